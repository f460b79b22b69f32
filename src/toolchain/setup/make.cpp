// SPDX-License-Identifier: Apache-2.0
#include "toolchain/setup/make.h"

#include "os/paths.h"
#include "os/savestream.h"
#include "toolchain/setup/packed.h"

#include <algorithm>

namespace tarn::setup {
namespace {

constexpr std::size_t Piece = 256 * 1024;
constexpr std::string_view Libraries[] = {"libtarnwick.so", "libtarnwick-qt.so"};  // that asking needs

std::string errorLine(const std::string& file, const ScriptError& error) {
    return file + "(" + std::to_string(error.line) + ") : error : " + error.text + "\n";
}

// Hands the bytes of a file on; false if it cannot be read to its end, or nobody takes them.
bool eachPiece(const std::string& file, const Sink& sink) {
    os::Handle handle = -1;
    if (os::files().open(file, os::OpenMode::Read, 0, handle) != os::FileError::None) return false;
    std::string piece(Piece, '\0');
    std::size_t got = Piece;
    bool ok = true;
    for (std::int64_t at = 0; ok && got > 0; at += static_cast<std::int64_t>(got)) {
        ok = os::readUpTo(handle, at, piece.data(), Piece, got) == os::FileError::None;
        ok = ok && (got == 0 || sink({piece.data(), got}));
        if (!ok) break;
    }
    os::files().close(handle);
    return ok;
}

bool isProgram(const std::string& file, const os::FileInfo& info) {
    constexpr std::uint32_t MayBeRun = 0111;
    return (info.mode & MayBeRun) != 0 || paths::extension(file) == ".exe";
}

class Maker {
public:
    explicit Maker(const MakeRequest& request) : request_(request), out_(request.made) {}

    std::string run() {
        std::string text;
        if (os::readFile(request_.script, text) != os::FileError::None)
            return errorLine(request_.script, {0, "the script cannot be read"});
        std::string report;
        for (const ScriptError& error : readScript(text, script_))
            report += errorLine(request_.script, error);
        if (report.empty()) {
            nameProduct();
            addAsking();
            report = measure();
        }
        return report.empty() ? write() : report;
    }

private:
    std::string fail(const std::string& text) const { return errorLine(request_.script, {0, text}); }

    void nameProduct() {
        if (!request_.product) return;
        Package& package = script_.package;
        const std::string companion = os::withoutExtension(package.program) + ".rcx";
        const auto place = std::find_if(package.files.begin(), package.files.end(),
                                        [&](const PackedFile& file) { return file.name == companion; });
        const auto source = script_.sources.begin() + (place - package.files.begin());
        package.product =
            request_.product(package, source == script_.sources.end() ? std::string() : *source);
    }

    void addAsking() {
        const Package& package = script_.package;
        const bool canAsk = os::sizeOf(request_.askProgram) > 0 &&
                            std::all_of(std::begin(Libraries), std::end(Libraries),
                                        [&](std::string_view library) { return package.holds(library); });
        if (!canAsk) return;
        script_.package.files.push_back({std::string(AskName), 0, true});
        script_.sources.push_back(request_.askProgram);
        putFirst(AskName);
        for (const std::string_view library : Libraries) putFirst(library);
    }

    // What asks is unpacked before all else, so it stands first.
    void putFirst(std::string_view name) {
        auto& files = script_.package.files;
        const auto place = std::find_if(files.begin(), files.end(),
                                        [&](const PackedFile& file) { return file.name == name; });
        const auto source = script_.sources.begin() + (place - files.begin());
        std::rotate(script_.sources.begin(), source, source + 1);
        std::rotate(files.begin(), place, place + 1);
    }

    std::string measure() {
        std::string report;
        for (std::size_t i = 0; i < script_.sources.size(); ++i) {
            const os::FileInfo info = os::infoOf(os::native(script_.sources[i]));
            if (!info.exists || info.folder || info.special)
                report += fail("the file '" + script_.sources[i] + "' does not exist");
            script_.package.files[i].size = info.size;
            script_.package.files[i].executable = isProgram(script_.sources[i], info);
        }
        if (report.empty()) report = apart();
        if (report.empty() && script_.package.size() > MaxPackageSize)
            report = fail("the files have " + std::to_string(script_.package.size()) +
                          " bytes; the most is " + std::to_string(MaxPackageSize));
        return report;
    }

    // The installer takes the place of nothing that it is made of.
    std::string apart() const {
        const os::FileInfo there = os::infoOf(request_.made);
        std::vector<std::string> sources = {request_.script, request_.setupProgram};
        for (const std::string& source : script_.sources) sources.push_back(os::native(source));
        for (const std::string& source : sources) {
            const os::FileInfo one = os::infoOf(source);
            if (there.exists && one.exists && one.device == there.device && one.inode == there.inode)
                return fail("'" + request_.made + "' cannot be made of itself");
        }
        return {};
    }

    bool put(std::string_view bytes) {
        out_.write(bytes);
        sum_ = addToSum(sum_, bytes);
        written_ += static_cast<std::int64_t>(bytes.size());
        return out_.ok();
    }

    std::string write() {
        const Sink all = [this](std::string_view bytes) { return put(bytes); };
        Layout layout;
        put(request_.first);
        layout.first = written_;
        const bool read = eachPiece(request_.setupProgram, all) && written_ > layout.first;
        if (out_.ok() && !read)
            return fail("the program that installs, '" + request_.setupProgram + "', cannot be read");
        layout.program = written_ - layout.first;
        const std::string failure = pack(all);
        if (!failure.empty()) return failure;
        layout.package = written_ - layout.packageAt();
        put(trailerOf(layout, sum_));
        const os::SaveResult saved = out_.finish();
        if (!saved.ok())
            return fail("'" + request_.made +
                        "' cannot be written: " + std::string(os::describe(saved.error)));
        constexpr std::uint32_t Executable = 0755;
        os::files().setMode(request_.made, Executable);
        return {};
    }

    std::string pack(const Sink& all) {
        Packer packer(all);
        packer.write(headOf(script_.package));
        for (std::size_t i = 0; i < script_.sources.size(); ++i) {
            std::int64_t size = 0;
            const bool read = eachPiece(os::native(script_.sources[i]), [&](std::string_view bytes) {
                size += static_cast<std::int64_t>(bytes.size());
                return packer.write(bytes);
            });
            if (out_.ok() && (!read || size != script_.package.files[i].size))
                return fail("the file '" + script_.sources[i] + "' cannot be read, or has changed meanwhile");
        }
        packer.finish();
        return {};  // what could not be written is told by the end of the file
    }

    const MakeRequest& request_;
    os::SaveStream out_;
    Script script_;
    std::uint64_t sum_ = 0;
    std::int64_t written_ = 0;
};

}  // namespace

std::string makeInstaller(const MakeRequest& request) {
    return Maker(request).run();
}

}  // namespace tarn::setup
