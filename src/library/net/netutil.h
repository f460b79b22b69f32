// SPDX-License-Identifier: Apache-2.0
//
// Mail, by handing it to the desktop: as a `mailto:` URL, or to the helper program postrun.exe (postrun.h), which can
// attach files. Nothing here speaks to a network. A mail that cannot be handed over is told in a box; nothing is waited
// for, and whether it was sent nobody knows. Web pages are OPENBROWSER's (library/system/programs.h).
//
// Providers of mail stand in the registry: `Software\Clients\Mail` has a key for each, with the value `DLLPath` or
// `DLLPathEx` if it takes mail from other programs, and `SOFTWARE\Microsoft\Windows Messaging Subsystem` says by the
// values `MAPI` and `MAPIX` whether any does.
#pragma once

#include <string>
#include <string_view>

namespace tarn {

// `attachment` is the name of a file; a URL cannot carry it, so a mail without a body asks for it. Owner and flags mean
// nothing here.
void EMAIL_MAILTO(int owner, int flags, const std::string& address, const std::string& subject,
                  const std::string& attachment, const std::string& body);
// By postrun.exe in the current folder, else beside this program. With an empty provider the user chooses one, and
// leaving that question sends nothing.
void EMAIL_POSTRUN(const std::string& provider, int flags, const std::string& address,
                   const std::string& subject, const std::string& attachment, const std::string& body);

bool ISMAPIINSTALLED();
std::string MAPIPROVIDERS();  // their names, one a line without a line end behind the last
// Enters the desktop as a provider, where xdg-email is on PATH and the registry says nothing of mail yet.
void PREPAREMAIL();

std::string URLESCAPE(std::string_view text);  // "%", CR and LF alone
// What the number means with which opening a file has failed (below 33).
std::string ERRORMESSAGE_SHELLEXECUTE(int code);

}  // namespace tarn
