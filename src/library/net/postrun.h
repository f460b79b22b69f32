// SPDX-License-Identifier: Apache-2.0
//
// The command line of postrun.exe, the helper that hands a mail to the desktop's mail program. It is one text, which the
// helper gets as its only argument:
//
//     -provider "name" -flags 0 -mailto a@b.org -body "one\ntwo" -subject "..." -attach "file"
//
// in which `-body`, `-subject` and `-attach` may be missing. In the body `\t`, `\n`, `\r`, `\"`, `\\` and `\xNN` stand for
// bytes that cannot be printed, quotes and backslashes; in the other texts two quotes stand for one. An address stands
// without quotes, unless it holds a blank or a quote. So no text can end early and be taken for an option.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace tarn {

struct PostrunMail {
    std::string provider;
    int flags = 0;
    std::string address, body, subject, attachment;
    friend bool operator==(const PostrunMail&, const PostrunMail&) = default;
};

// With a blank behind each part. Empty bodies, subjects and attachments are left out. Characters 0, which no argument of
// a program can hold, are left out of all but the body.
std::string POSTRUNLINE(const PostrunMail& mail);
// Reads such a line, with its options in any order, each once. The result says what is wrong with it, empty if nothing
// is. An address is needed, the rest may be missing.
std::string PARSEPOSTRUNLINE(std::string_view line, PostrunMail& mail);
// The arguments of xdg-email for the mail. None of its texts can be taken for an option: what begins with "-" stands
// behind the option that it belongs to, and the address is a URL, in which all but letters, digits and "@.-_+,~" is
// escaped. Line ends in the subject are blanks.
std::vector<std::string> XDGEMAILARGUMENTS(const PostrunMail& mail);

}  // namespace tarn
