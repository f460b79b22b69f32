// SPDX-License-Identifier: Apache-2.0
#include "toolchain/build/tcc.h"

#ifdef TARNWICK_TCC

#include "os/paths.h"
#include "toolchain/build/elf.h"

#include <csetjmp>
#include <fcntl.h>
#include <libtcc.h>
#include <sys/mman.h>
#include <unistd.h>

namespace {

std::jmp_buf* escape = nullptr;

}  // namespace

// tcc ends the process at some errors. Programs that hold it are linked so that their calls of exit come here.
extern "C" {
[[noreturn]] void __real_exit(int code);
[[noreturn]] void __wrap_exit(int code);
void __wrap_exit(int code) {
    if (escape != nullptr) std::longjmp(*escape, 1);
    __real_exit(code);
}
}

namespace tarn::toolchain {
namespace {

constexpr std::string_view Header = "#include <stdint.h>";
constexpr std::string_view HeaderText = "typedef signed char int8_t; typedef unsigned char uint8_t; typedef "
                                        "short int16_t; typedef unsigned short "
                                        "uint16_t; typedef int int32_t; typedef unsigned int uint32_t; "
                                        "typedef long int64_t; typedef unsigned long "
                                        "uint64_t; typedef unsigned long uintptr_t; typedef long intptr_t;";

// A file without a place on a disk, which others in this process open by its path.
class MemoryFile {
public:
    MemoryFile() : number_(::memfd_create("tarnwick", MFD_CLOEXEC)) {}
    ~MemoryFile() {
        if (number_ >= 0) ::close(number_);
    }
    MemoryFile(const MemoryFile&) = delete;
    MemoryFile& operator=(const MemoryFile&) = delete;

    std::string path() const { return "/proc/self/fd/" + std::to_string(number_); }

    bool fill(std::string_view bytes) const {
        while (!bytes.empty()) {
            const ssize_t written = ::write(number_, bytes.data(), bytes.size());
            if (written <= 0) return false;
            bytes.remove_prefix(static_cast<std::size_t>(written));
        }
        return number_ >= 0;
    }
    std::string contents() const {
        const off_t size = ::lseek(number_, 0, SEEK_END);
        std::string bytes(size > 0 ? static_cast<std::size_t>(size) : 0, '\0');
        std::size_t done = 0;
        while (done < bytes.size()) {
            const ssize_t got =
                ::pread(number_, bytes.data() + done, bytes.size() - done, static_cast<off_t>(done));
            if (got <= 0) return {};
            done += static_cast<std::size_t>(got);
        }
        return bytes;
    }

private:
    int number_;
};

// Whether `call`, which has nothing to clean up, returns true, and returns at all.
template <typename Call>
bool guarded(const Call& call) {
    std::jmp_buf here;
    escape = &here;
    const bool success = setjmp(here) == 0 && call();
    escape = nullptr;
    return success;
}

// One run of tcc, and what it said. After a failure its state is left alone, which may be in the middle of things.
class Run {
public:
    Run(int output, const std::string& options) : state_(tcc_new()) {
        if (state_ == nullptr) return;
        tcc_set_error_func(state_, this, hear);
        whole_ = guarded([&] {
            tcc_set_options(state_, options.c_str());
            return tcc_set_output_type(state_, output) == 0;
        });
    }
    ~Run() {
        if (whole_) tcc_delete(state_);
    }
    Run(const Run&) = delete;
    Run& operator=(const Run&) = delete;

    bool compile(const std::string& text) {
        whole_ = whole_ && guarded([&] { return tcc_compile_string(state_, text.c_str()) == 0; });
        return whole_;
    }
    bool add(std::string_view bytes) {
        const MemoryFile file;
        const std::string path = file.path();
        whole_ =
            whole_ && file.fill(bytes) && guarded([&] { return tcc_add_file(state_, path.c_str()) == 0; });
        return whole_;
    }
    Made result() {
        const MemoryFile file;
        const std::string path = file.path();
        whole_ = whole_ && guarded([&] { return tcc_output_file(state_, path.c_str()) == 0; });
        Made made;
        if (whole_) made.bytes = file.contents();
        return made.bytes.empty() ? failed() : made;
    }
    Made failed() const { return {{}, said_.empty() ? "it wrote nothing" : said_}; }

private:
    static void hear(void* run, const char* text) { static_cast<Run*>(run)->said_.append(text).append("\n"); }

    TCCState* state_;
    bool whole_ = false;
    std::string said_;
};

}  // namespace

bool tccIsThere() {
    return true;
}

Made tccCompile(std::string text) {
    if (const std::size_t at = text.find(Header); at != std::string::npos)
        text.replace(at, Header.size(), HeaderText);
    Run run(TCC_OUTPUT_OBJ, "-w -nostdlib");
    return run.compile(text) ? run.result() : run.failed();
}

Made tccLink(const std::vector<std::string_view>& objects, const std::string& library) {
    const std::string names = namesOfLibrary(library);
    if (names.empty()) return {{}, "'" + library + "' is no library"};
    // The folder is put in afterwards: as an option it could not hold every character.
    const std::string folder(paths::folder(library).substr(0, paths::folder(library).size() - 1));
    const std::string place(folder.size(), 'R');
    Run run(TCC_OUTPUT_EXE, "-w -nostdlib -xb -Wl,-rpath=$ORIGIN:" + place + ",--enable-new-dtags");
    for (const std::string_view object : objects)
        if (!run.add(object)) return run.failed();
    if (!run.add(names)) return run.failed();
    Made made = run.result();
    if (!made.failure.empty()) return made;
    const std::size_t at = made.bytes.find("$ORIGIN:" + place);
    if (at == std::string::npos) return {{}, "the program has no place for the folder of the library"};
    made.bytes.replace(at + 8, folder.size(), folder);
    if (!forbidStackCode(made.bytes)) return {{}, "the program has no place for the kind of its stack"};
    return made;
}

}  // namespace tarn::toolchain

#else

namespace tarn::toolchain {

bool tccIsThere() {
    return false;
}
Made tccCompile(std::string) {
    return {{}, "the tools were built without tcc"};
}
Made tccLink(const std::vector<std::string_view>&, const std::string&) {
    return {{}, "the tools were built without tcc"};
}

}  // namespace tarn::toolchain

#endif
