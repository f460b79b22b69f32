// SPDX-License-Identifier: Apache-2.0
//
// An XML reader: an object that reads one file at a time, into a value, into type information text, or to one
// who watches what stands in the file, one thing after another. Readers share nothing: any number of them may
// be at work, one inside another too, as in the events of a walk or while a load tells how far it is. The
// operations of xml.h have one reader of their own among them.
//
// What goes wrong is told as xml.h says; the error cell stays as it was. A reader that is asked for a second
// file while it stands in one refuses it with 651.
//
// Cost: linear in the file, which is read in blocks. A reader takes some 300 KiB with its first file and keeps
// them until its end; a walk takes nothing but the names of the open elements besides, so that files of any
// size can be walked.
#pragma once

#include "kernel/data/xml/xml.h"
#include "os/files.h"

#include <memory>
#include <string>
#include <string_view>

namespace tarn {

// What one who watches a walk is told, in the order of the file. Texts are valid until the call returns.
class XmlEvents {
public:
    virtual ~XmlEvents() = default;
    // A start tag; `line` is the one on which its name stands. Its attributes follow, all ahead of its content.
    virtual void start(std::string_view name, std::int32_t line) = 0;
    virtual void attribute(std::string_view name, std::string_view value) = 0;
    // A part of the text of the open element, with references expanded and line ends as one byte 10; what is
    // blank, too. A text may come in any number of parts.
    virtual void text(std::string_view part) = 0;
    // A part that a reference or a CDATA section gives, which nobody writes to lay out a file.
    virtual void givenText(std::string_view part) { text(part); }
    virtual void end() = 0;
};

// What a character reference of more than 127 gives.
enum class XmlCharacters {
    Bytes,  // the low byte of its number, as loads have it
    Utf8,   // the character; 672 for a number that is none
};

// How long a line of the file, and the text of an element that is looked at for its type, may be.
enum class XmlLengths {
    Told,  // 32768 bytes, as programs of the system read them
    Long,  // LongestXmlLine
};
inline constexpr std::int32_t LongestXmlLine = std::int32_t{1} << 24;

struct XmlReadResult {
    ErrorRecord error;
    bool stopped = false;                           // by progress.h; a value is as it was
    ErrorRecord lost{};                             // the first data that the value has no place for
    os::FileError fileError = os::FileError::None;  // behind an `error` of 651 to 654
};

class XmlReader {
public:
    XmlReader() noexcept;
    ~XmlReader();
    XmlReader(const XmlReader&) = delete;
    XmlReader& operator=(const XmlReader&) = delete;

    [[nodiscard]] bool isReading() const { return reading_; }

    // As XmlRead: `value` and `typeText` may each be null.
    XmlReadResult read(const std::string& filename, void* value, Kind kind, std::string* typeText,
                       std::int32_t typeTextSize);
    // The structure alone, as XmlDiscover has it, of a file of such lengths.
    XmlReadResult discover(const std::string& filename, std::string& typeText, std::int32_t typeTextSize,
                           XmlLengths lengths);
    // As XmlLoad.
    XmlResult load(const std::string& filename, void* value, Kind kind);
    // Tells `events` what stands in the file, to its end. Behind a failure, which the result tells, events are
    // what was made of the rest; start and end need not match then. An attribute that was cut, because it holds
    // quotes or line ends and is longer than 32768 bytes, is a failure (671).
    XmlReadResult walk(const std::string& filename, XmlEvents& events,
                       XmlCharacters characters = XmlCharacters::Bytes);
    // The same in parts. An error: nothing was started. Each `walkOn` goes on to behind the end of an element
    // that stands `depth` deep (the outermost: 1); false at the end of the walk. Between two of them the
    // reader stands in the middle of its file, for as long as is wanted. `endWalk`, which may come early,
    // closes the file and gives what the whole walk found. Events must not go on with, or end, their own walk.
    ErrorRecord startWalk(const std::string& filename, XmlEvents& events,
                          XmlCharacters characters = XmlCharacters::Bytes,
                          XmlLengths lengths = XmlLengths::Told);
    bool walkOn(std::int32_t depth);
    XmlReadResult endWalk();

private:
    friend struct XmlReading;
    struct Work;
    bool prepare();
    [[nodiscard]] bool isWalking() const;

    std::unique_ptr<Work> work_;  // from the first file on
    bool reading_ = false;
};

}  // namespace tarn
