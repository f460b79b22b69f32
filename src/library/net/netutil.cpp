// SPDX-License-Identifier: Apache-2.0
#include "library/net/netutil.h"

#include "library/net/postrun.h"
#include "library/system/system.h"
#include "os/process.h"

MODULE("netutil", tarn::DefaultErrorHandler, tarn::LeaveErrors)

namespace tarn {
namespace {

constexpr const char* Title = "Send Email";
constexpr const char* SubsystemKey = "SOFTWARE\\Microsoft\\Windows Messaging Subsystem";
constexpr const char* ProvidersKey = "Software\\Clients\\Mail";
constexpr const char* Helper = "postrun.exe";
constexpr std::string_view ByHand = "Hotmail";  // it takes no attachments, the user has to put them in
constexpr int Opened = 33, NoApplication = 31;

void tell(const std::string& text) {
    MsgBox(Title, text, "OK", BoxIcon::Error);
}

std::string pleaseAttach(const std::string& attachment) {
    return "Please attach " + attachment + " to this email!";
}

// The shell's way to open a URL: 33 and above is good.
int shellOpen(const std::string& url) {
    return OpenUrl(url) ? Opened : NoApplication;
}

std::string helperProgram() {
    const std::string here = FINDTOOL(FILEADDSEPARATOR(GETCURDIR()) + Helper);
    return here.empty() ? FINDTOOL(os::executableFolder() + Helper) : here;
}

std::string providerKey(const std::string& name) {
    return std::string(ProvidersKey) + "\\" + name;
}

bool takesMail(const std::string& name) {
    return RegGetSettingInfo(providerKey(name), "DLLPath").exists ||
           RegGetSettingInfo(providerKey(name), "DLLPathEx").exists;
}

// What is missing for a mail by the helper; empty if nothing is.
std::string missingForHelper(const std::string& address) {
    if (address.empty()) return "Cannot send email, no Mailto address was provided.";
    if (!ISMAPIINSTALLED()) return "Cannot send email, MAPI is not installed on this computer.";
    if (helperProgram().empty()) return "Cannot send email, postrun.exe is not installed on this computer.";
    return {};
}

PostrunMail composed(const std::string& provider, int flags, const std::string& address,
                     const std::string& subject, const std::string& attachment, const std::string& body) {
    const bool byHand = STREQUAL(provider, ByHand);
    PostrunMail mail{provider, flags, address, byHand ? "" : body, subject, byHand ? "" : attachment};
    if (!attachment.empty() && (byHand || body.empty())) mail.body = pleaseAttach(attachment);
    return mail;
}

bool startHelper(const PostrunMail& mail) {
    os::StartRequest request;
    request.program = helperProgram();
    request.arguments = {POSTRUNLINE(mail)};
    os::StartError error = os::StartError::None;
    return os::processes().start(request, error) != nullptr;
}

}  // namespace

// ---- sending ----

void EMAIL_MAILTO(int, int, const std::string& address, const std::string& subject,
                  const std::string& attachment, const std::string& body) {
    FRAME(EMAIL_MAILTO);
    STAMP();
    if (address.empty()) return tell("Cannot send email, no Mailto address was provided.");
    std::string url = "mailto:" + address;
    const std::string text = !attachment.empty() && body.empty() ? pleaseAttach(attachment) : body;
    if (!subject.empty()) url += "?subject=" + URLESCAPE(subject);
    if (!text.empty()) url += (subject.empty() ? "?body=" : "&body=") + URLESCAPE(text);
    STAMP();
    const int result = shellOpen(url);
    if (result < Opened) tell(ERRORMESSAGE_SHELLEXECUTE(result));
}

void EMAIL_POSTRUN(const std::string& provider, int flags, const std::string& address,
                   const std::string& subject, const std::string& attachment, const std::string& body) {
    FRAME(EMAIL_POSTRUN);
    STAMP();
    const std::string missing = missingForHelper(address);
    if (!missing.empty()) return tell(missing);
    STAMP();
    std::string chosen = provider;
    if (chosen.empty()) chosen = ListBox("Choose Email program", "&Email program:", MAPIPROVIDERS());
    if (chosen.empty()) return;
    STAMP();
    if (!startHelper(composed(chosen, flags, address, subject, attachment, body)))
        tell("Cannot send email, postrun.exe is not installed on this computer.");
}

// ---- providers ----

bool ISMAPIINSTALLED() {
    FRAME(ISMAPIINSTALLED);
    STAMP();
    return RegGetSetting(SubsystemKey, "MAPI") == "1" || RegGetSetting(SubsystemKey, "MAPIX") == "1";
}

std::string MAPIPROVIDERS() {
    FRAME(MAPIPROVIDERS);
    STAMP();
    std::string list;
    for (const std::string& name : STRSPLIT(RegGetAllSections(ProvidersKey), "\n", 0)) {
        if (takesMail(name)) list.append(list.empty() ? "" : "\n").append(name);
    }
    return list;
}

void PREPAREMAIL() {
    FRAME(PREPAREMAIL);
    STAMP();
    for (const char* value : {"MAPI", "MAPIX"}) {
        if (RegGetSettingInfo(SubsystemKey, value).exists) return;
    }
    const std::string folders = STRREPLACE(os::environment("PATH"), ":", ";");
    if (FILEFINDPATHNAME(folders, "xdg-email").empty()) return;
    STAMP();
    // A registry that cannot be written is one that has no mail.
    if (RegSaveSetting(providerKey("Desktop"), "DLLPath", "xdg-email").empty())
        static_cast<void>(RegSaveSetting(SubsystemKey, "MAPI", "1"));
}

// ---- texts ----

std::string URLESCAPE(std::string_view text) {
    FRAME(URLESCAPE);
    std::string result;
    for (const char c : text) {
        if (c == '%')
            result += "%25";
        else if (c == '\r')
            result += "%0D";
        else if (c == '\n')
            result += "%0A";
        else
            result += c;
    }
    return result;
}

std::string ERRORMESSAGE_SHELLEXECUTE(int code) {
    FRAME(ERRORMESSAGE_SHELLEXECUTE);
    static constexpr std::pair<int, std::string_view> texts[] = {
        {0, "The operating system ran out of memory or resources"},
        {2, "The file was not found"},
        {3, "The path was not found"},
        {5, "The operating system denied access to the file"},
        {8, "There was not enough memory to complete the operation"},
        {11, "The .exe file is invalid"},
        {26, "A file sharing violation occurred"},
        {27, "The file name association is incomplete or invalid"},
        {28, "DDE transaction could not be completed because the request timed out"},
        {29, "DDE transaction failed"},
        {30, "DDE transaction was not completed because other DDE transactions are underway"},
        {31, "No application is associated with the extension, or the file cannot be printed"},
        {32, "The DLL was not found"}};
    for (const auto& [number, text] : texts)
        if (number == code) return std::string(text);
    return "Other ShellExecute error: " + STR(code);
}

}  // namespace tarn
