// SPDX-License-Identifier: Apache-2.0
#include "toolchain/setup/script.h"

#include "os/paths.h"

#include <algorithm>
#include <map>
#include <set>

namespace tarn::setup {
namespace {

constexpr std::string_view AppFolder = "{app}\\", Group = "{group}\\", Desktop = "{commondesktop}\\",
                           ProgramFolder = "{pf}\\", Uninstaller = "{uninstallexe}";

// What an editor may have put in front of a text.
constexpr std::string_view Utf8Mark = "\xEF\xBB\xBF", Utf16Marks[] = {"\xFF\xFE", "\xFE\xFF"};

std::string_view markOf(std::string_view text) {
    if (text.starts_with(Utf8Mark)) return Utf8Mark;
    for (const std::string_view mark : Utf16Marks)
        if (text.starts_with(mark)) return mark;
    return {};
}

// A line of `Key:"value"; Key:value;`, each key once.
using Fields = std::map<std::string, std::string, std::less<>>;

std::string_view trimmed(std::string_view text) {
    constexpr std::string_view Blanks = " \t\r";
    const std::size_t begin = std::min(text.find_first_not_of(Blanks), text.size());
    text.remove_prefix(begin);
    return text.substr(0, text.find_last_not_of(Blanks) + 1);
}

bool leadsOut(std::string_view path) {
    while (!path.empty()) {
        const std::size_t end = std::min(path.find_first_of(paths::separators), path.size());
        if (path.substr(0, end) == "..") return true;
        path.remove_prefix(std::min(end + 1, path.size()));
    }
    return false;
}

// What stands behind a key: in quotes, in which two stand for one, or up to the semicolon.
bool readValue(std::string_view& rest, std::string& value) {
    rest = trimmed(rest);
    if (!rest.starts_with('"')) {
        const std::size_t end = std::min(rest.find(';'), rest.size());
        value = trimmed(rest.substr(0, end));
        rest.remove_prefix(end);
        return true;
    }
    for (std::size_t at = 1; at < rest.size(); ++at) {
        if (rest[at] != '"')
            value += rest[at];
        else if (rest.substr(at).starts_with("\"\""))
            value += rest[at++];
        else {
            rest = trimmed(rest.substr(at + 1));
            return true;
        }
    }
    return false;
}

// What is wrong with the form of the line; empty if nothing is.
std::string readFields(std::string_view line, Fields& fields) {
    for (line = trimmed(line); !line.empty(); line = trimmed(line)) {
        const std::size_t colon = line.find(':');
        if (colon == std::string_view::npos) return "a key without a value";
        const std::string key(trimmed(line.substr(0, colon)));
        std::string value;
        line.remove_prefix(colon + 1);
        if (!readValue(line, value)) return "the quotes are not closed";
        if (!fields.emplace(key, value).second) return "the key '" + key + "' stands twice";
        if (line.empty()) break;
        if (line[0] != ';') return "a semicolon is missing behind the value of '" + key + "'";
        line.remove_prefix(1);
    }
    return {};
}

class Reader {
public:
    explicit Reader(Script& script) : script_(script) {}

    std::vector<ScriptError> run(std::string_view text) {
        if (const std::string_view mark = markOf(text); mark == Utf8Mark)
            text.remove_prefix(mark.size());
        else if (!mark.empty())
            return {{1, "the script is UTF-16; save it as UTF-8"}};
        for (line_ = 1; !text.empty(); ++line_) {
            const std::size_t end = std::min(text.find('\n'), text.size());
            const std::string_view line = trimmed(text.substr(0, end));
            text.remove_prefix(std::min(end + 1, text.size()));
            if (line.find('\0') != std::string_view::npos)
                fail("a character 0");
            else if (line.starts_with('['))
                openSection(line);
            else if (!line.empty())
                read(line);
        }
        line_ = 0;
        finish();
        return std::move(errors_);
    }

private:
    using Section = void (Reader::*)(std::string_view line);
    struct SectionRow {
        std::string_view name;
        Section read;
    };

    void fail(const std::string& text) { errors_.push_back({line_, text}); }

    void openSection(std::string_view line) {
        static constexpr SectionRow sections[] = {{"[Setup]", &Reader::readSetup},
                                                  {"[Dirs]", &Reader::readDirs},
                                                  {"[Languages]", &Reader::readLanguages},
                                                  {"[Icons]", &Reader::readIcons},
                                                  {"[Files]", &Reader::readFiles}};
        const auto* row = std::find_if(std::begin(sections), std::end(sections),
                                       [line](const SectionRow& one) { return one.name == line; });
        section_ = row == std::end(sections) ? nullptr : row->read;
        inUnknown_ = section_ == nullptr;
        if (inUnknown_) return fail("the section " + std::string(line) + " is not known");
        if (!seen_.insert(row->name).second) fail("the section " + std::string(line) + " stands twice");
    }

    void read(std::string_view line) {
        if (section_ != nullptr)
            (this->*section_)(line);
        else if (!inUnknown_)
            fail("a line in front of the first section");
    }

    // ---- [Setup] ----

    void readSetup(std::string_view line) {
        const std::size_t equals = line.find('=');
        const std::string key(line.substr(0, std::min(equals, line.size())));
        const std::string value(equals == std::string_view::npos ? "" : line.substr(equals + 1));
        struct Row {
            std::string_view key;
            std::string Package::*text;  // null: it is read by itself, or means nothing here
        };
        static constexpr Row rows[] = {{"AppName", nullptr},
                                       {"AppVerName", &Package::title},
                                       {"AppId", nullptr},
                                       {"DefaultDirName", nullptr},
                                       {"DefaultGroupName", nullptr},
                                       {"AppPublisher", &Package::publisher},
                                       {"AppCopyright", &Package::copyright},
                                       {"AppVersion", &Package::version},
                                       {"WizardImageFile", nullptr},
                                       {"WizardSmallImageFile", nullptr},
                                       {"Compression", nullptr}};
        const auto* row =
            std::find_if(std::begin(rows), std::end(rows), [&](const Row& one) { return one.key == key; });
        if (equals == std::string_view::npos || row == std::end(rows))
            return fail("the key '" + key + "' is not known in [Setup]");
        if (!setup_.emplace(key, value).second) return fail("the key '" + key + "' stands twice");
        if (row->text != nullptr) script_.package.*(row->text) = value;
        checkSetup(key, value);
    }

    void checkSetup(const std::string& key, const std::string& value) {
        if (key == "Compression" && value != "lzma/normal") fail("the compression must be lzma/normal");
        if ((key == "AppName" || key == "AppId" || key == "DefaultGroupName") && !isPlainName(value))
            fail("'" + value + "' is no name for " + key);
        if (key == "AppName") script_.package.name = value;
        if (key == "DefaultDirName" &&
            (!value.starts_with(ProgramFolder) || !isPlainName(value.substr(ProgramFolder.size()))))
            fail("the folder must be {pf}\\ and a name");
    }

    // ---- lines of fields ----

    // The line's fields, if it has all that are needed and none that is not known.
    bool fieldsOf(std::string_view line, std::initializer_list<std::string_view> needed,
                  std::initializer_list<std::string_view> others, Fields& fields) {
        const std::string problem = readFields(line, fields);
        if (!problem.empty()) return fail(problem), false;
        const std::size_t before = errors_.size();
        for (const std::string_view key : needed)
            if (fields.count(key) == 0) fail("the key '" + std::string(key) + "' is missing");
        for (const auto& [key, value] : fields)
            if (std::find(needed.begin(), needed.end(), key) == needed.end() &&
                std::find(others.begin(), others.end(), key) == others.end())
                fail("the key '" + key + "' is not known here");
        return errors_.size() == before;
    }

    void readDirs(std::string_view line) {
        Fields fields;
        if (!fieldsOf(line, {"Name", "Permissions"}, {}, fields)) return;
        if (fields["Name"] != "{app}") fail("the only folder is {app}");
        if (fields["Permissions"] != "authusers-modify") fail("the permissions must be authusers-modify");
    }

    void readLanguages(std::string_view line) {
        Fields fields;
        if (!fieldsOf(line, {"Name", "MessagesFile"}, {}, fields)) return;
        if (fields["Name"] != "english") fail("the only language is english");
    }

    void readIcons(std::string_view line) {
        Fields fields;
        if (!fieldsOf(line, {"Name", "Filename"}, {"WorkingDir", "IconFilename"}, fields)) return;
        const bool menu = fields["Name"].starts_with(Group), desktop = fields["Name"].starts_with(Desktop);
        const std::string name = fields["Name"].substr(menu ? Group.size() : desktop ? Desktop.size() : 0);
        if ((!menu && !desktop) || !isPlainName(name))
            return fail("the name must be {group}\\ or {commondesktop}\\ and a name");
        if (fields.count("WorkingDir") != 0 && fields["WorkingDir"] != "{app}")
            return fail("the folder to start in must be {app}");
        if (fields.count("IconFilename") != 0 && fields["IconFilename"] != "{app}\\" + std::string(IconName))
            return fail("the icon must be {app}\\" + std::string(IconName));
        addShortcut(fields["Filename"], fields.count("IconFilename") != 0,
                    menu ? Shortcut::Place::Menu : Shortcut::Place::Desktop);
    }

    void addShortcut(const std::string& file, bool icon, Shortcut::Place place) {
        Package& package = script_.package;
        if (file == Uninstaller) {
            package.shortcuts.push_back({place, Shortcut::Kind::Uninstall});
            return;
        }
        const std::string program = file.substr(std::min(AppFolder.size(), file.size()));
        if (!file.starts_with(AppFolder) || !isPlainName(program))
            return fail("the program must be {app}\\ and a name, or {uninstallexe}");
        if (!package.program.empty() && package.program != program)
            return fail("there is one program, '" + package.program + "'");
        package.program = program;
        package.shortcuts.push_back({place, icon ? Shortcut::Kind::Icon : Shortcut::Kind::Plain});
    }

    void readFiles(std::string_view line) {
        Fields fields;
        if (!fieldsOf(line, {"Source", "DestDir"}, {"DestName"}, fields)) return;
        const std::string& source = fields["Source"];
        const std::string name =
            fields.count("DestName") != 0 ? fields["DestName"] : std::string(paths::fileName(source));
        if (fields["DestDir"] != AppFolder) return fail("the folder must be {app}\\");
        if (leadsOut(source)) return fail("'" + source + "' leads out of its folder");
        if (!isPlainName(name)) return fail("'" + name + "' is no name of a file");
        if (name == UninstallName || name == ListName || name == AskName)
            return fail("'" + name + "' is a name of the installer's own; rename the file");
        if (script_.package.holds(name))
            return fail("'" + name + "' is installed twice; take one of its lines out, or rename the file");
        script_.package.files.push_back({name, 0, false});
        script_.sources.push_back(source);
    }

    // ---- the whole ----

    void finish() {
        const Package& package = script_.package;
        if (setup_.count("AppName") == 0) fail("[Setup] has no AppName");
        if (setup_.count("DefaultDirName") == 0) fail("[Setup] has no DefaultDirName");
        if (package.program.empty())
            fail("[Icons] names no program");
        else if (!package.holds(package.program))
            fail("'" + package.program + "' is not among the files");
        const bool icon = std::any_of(package.shortcuts.begin(), package.shortcuts.end(),
                                      [](const Shortcut& one) { return one.kind == Shortcut::Kind::Icon; });
        if (icon && !package.holds(IconName)) fail("'" + std::string(IconName) + "' is not among the files");
    }

    Script& script_;
    std::vector<ScriptError> errors_;
    Section section_ = nullptr;
    bool inUnknown_ = false;
    int line_ = 0;
    std::set<std::string_view> seen_;
    Fields setup_;
};

}  // namespace

std::vector<ScriptError> readScript(std::string_view text, Script& script) {
    return Reader(script).run(text);
}

}  // namespace tarn::setup
