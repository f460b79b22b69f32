// SPDX-License-Identifier: Apache-2.0
#include "toolchain/setup/packed.h"

#include <algorithm>
#include <array>
#include <lzma.h>

namespace tarn::setup {
namespace {

constexpr std::size_t Piece = 64 * 1024, LongestHead = 4 * 1024 * 1024;
constexpr std::uint64_t MostMemory = 256 * 1024 * 1024;
constexpr const char* Damaged = "the package is damaged";

const std::uint8_t* asBytes(const char* text) {
    return reinterpret_cast<const std::uint8_t*>(text);
}

}  // namespace

// ---- writing ----

struct Packer::Stream {
    lzma_stream lzma = LZMA_STREAM_INIT;
    bool ok = false;
    std::array<char, Piece> out{};
};

Packer::Packer(Sink sink) : stream_(std::make_unique<Stream>()), sink_(std::move(sink)) {
    stream_->ok = ::lzma_easy_encoder(&stream_->lzma, LZMA_PRESET_DEFAULT, LZMA_CHECK_SHA256) == LZMA_OK;
}
Packer::~Packer() {
    ::lzma_end(&stream_->lzma);
}

bool Packer::run(std::string_view bytes, bool last) {
    lzma_stream& lzma = stream_->lzma;
    lzma.next_in = asBytes(bytes.data());
    lzma.avail_in = bytes.size();
    for (bool more = stream_->ok; more;) {
        lzma.next_out = reinterpret_cast<std::uint8_t*>(stream_->out.data());
        lzma.avail_out = Piece;
        const lzma_ret result = ::lzma_code(&lzma, last ? LZMA_FINISH : LZMA_RUN);
        const bool good = result == LZMA_OK || result == LZMA_STREAM_END;
        stream_->ok = good && sink_({stream_->out.data(), Piece - lzma.avail_out});
        more = stream_->ok && (last ? result != LZMA_STREAM_END : lzma.avail_in > 0);
    }
    return stream_->ok;
}

bool Packer::write(std::string_view bytes) {
    return bytes.empty() ? stream_->ok : run(bytes, false);
}
bool Packer::finish() {
    return run({}, true);
}

// ---- reading ----

struct Unpacker::Stream {
    lzma_stream lzma = LZMA_STREAM_INIT;
    os::Handle handle = -1;
    std::int64_t at = 0, end = 0;
    std::array<char, Piece> in{}, out{};
};

Unpacker::Unpacker(const std::string& file, const Layout& layout) : stream_(std::make_unique<Stream>()) {
    stream_->at = layout.packageAt();
    stream_->end = layout.packageAt() + layout.package;
    broken_ = os::files().open(file, os::OpenMode::Read, 0, stream_->handle) != os::FileError::None ||
              ::lzma_stream_decoder(&stream_->lzma, MostMemory, 0) != LZMA_OK;
}
Unpacker::~Unpacker() {
    ::lzma_end(&stream_->lzma);
    try {
        if (stream_->handle >= 0) os::files().close(stream_->handle);
    } catch (...) {  // the end of the process, in a test
    }
}

// Puts more bytes into `ready_`; false if none can come.
bool Unpacker::fill() {
    if (ended_ || broken_) return false;
    Stream& s = *stream_;
    if (s.lzma.avail_in == 0 && s.at < s.end) {
        std::size_t got = 0;
        const auto wanted = static_cast<std::size_t>(std::min<std::int64_t>(Piece, s.end - s.at));
        broken_ = os::readUpTo(s.handle, s.at, s.in.data(), wanted, got) != os::FileError::None || got == 0;
        if (broken_) return false;
        s.at += static_cast<std::int64_t>(got);
        s.lzma.next_in = asBytes(s.in.data());
        s.lzma.avail_in = got;
    }
    s.lzma.next_out = reinterpret_cast<std::uint8_t*>(s.out.data());
    s.lzma.avail_out = Piece;
    const lzma_ret result = ::lzma_code(&s.lzma, s.at < s.end ? LZMA_RUN : LZMA_FINISH);
    ended_ = result == LZMA_STREAM_END;
    broken_ = result != LZMA_OK && !ended_;
    ready_.append(s.out.data(), Piece - s.lzma.avail_out);
    return !broken_;
}

std::string Unpacker::readHead(Package& package) {
    std::size_t end = ready_.find("\n\n");
    while (end == std::string::npos) {
        if (ready_.size() > LongestHead || !fill()) return Damaged;
        end = ready_.find("\n\n");
    }
    const std::string head = ready_.substr(0, end + 1);
    ready_.erase(0, end + 2);
    return setup::readHead(head, package);
}

std::string Unpacker::readFile(const PackedFile& file, const Sink& sink) {
    for (std::int64_t left = file.size; left > 0;) {
        if (ready_.empty() && !fill()) return Damaged;
        const auto count =
            static_cast<std::size_t>(std::min<std::int64_t>(left, static_cast<std::int64_t>(ready_.size())));
        if (sink && count > 0 && !sink(std::string_view(ready_).substr(0, count)))
            return "'" + file.name + "' cannot be written";
        ready_.erase(0, count);
        left -= static_cast<std::int64_t>(count);
    }
    return {};
}

std::string Unpacker::end() {
    while (ready_.empty() && fill()) {}
    return ready_.empty() && ended_ && stream_->at == stream_->end && stream_->lzma.avail_in == 0
               ? std::string()
               : std::string(Damaged);
}

}  // namespace tarn::setup
