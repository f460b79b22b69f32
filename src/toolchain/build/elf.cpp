// SPDX-License-Identifier: Apache-2.0
#include "toolchain/build/elf.h"

#include "os/files.h"
#include "os/programfile.h"

#include <algorithm>
#include <cstring>
#include <optional>

namespace tarn::toolchain {
namespace {

constexpr std::string_view SoName = "libtarnwick.so";
constexpr std::string_view Prefixes[] = {"tarn_", "quarn_"};
// What start.c calls, and what C compilers call for an assignment of a large value.
constexpr const char* OfTheCLibrary[] = {"__libc_start_main", "getrlimit", "memcpy",
                                         "memmove",           "memset",    "memcmp"};

template <typename Record>
void append(std::string& bytes, const Record& record) {
    bytes.append(reinterpret_cast<const char*>(&record), sizeof record);
}

// What a file of that kind begins with; nothing for other bytes.
std::optional<Elf64_Ehdr> headOf(std::string_view bytes) {
    Elf64_Ehdr head;
    if (bytes.size() < sizeof head || os::programFileOf(bytes) != os::ProgramFile::Elf) return {};
    std::memcpy(&head, bytes.data(), sizeof head);
    if (head.e_ident[EI_CLASS] != ELFCLASS64) return {};
    return head;
}

// Reads parts of a file; a part that is not there as a whole is empty.
class Source {
public:
    explicit Source(const std::string& path) {
        if (os::files().open(path, os::OpenMode::Read, 0, handle_) != os::FileError::None) handle_ = -1;
    }
    ~Source() {
        if (handle_ >= 0) os::files().close(handle_);
    }
    Source(const Source&) = delete;
    Source& operator=(const Source&) = delete;

    std::string part(std::uint64_t offset, std::uint64_t size) const {
        constexpr std::uint64_t Most = 1U << 28;
        if (handle_ < 0 || size > Most) return {};
        std::string bytes(size, '\0');
        std::size_t got = 0;
        const os::FileError error =
            os::readUpTo(handle_, static_cast<std::int64_t>(offset), bytes.data(), bytes.size(), got);
        return error == os::FileError::None && got == size ? bytes : std::string();
    }
    template <typename Record>
    std::vector<Record> records(std::uint64_t offset, std::uint64_t size) const {
        const std::string bytes = part(offset, size);
        std::vector<Record> result(bytes.size() / sizeof(Record));
        if (!result.empty()) std::memcpy(result.data(), bytes.data(), result.size() * sizeof(Record));
        return result;
    }

private:
    os::Handle handle_ = -1;
};

bool isWanted(std::string_view name) {
    for (const std::string_view prefix : Prefixes)
        if (name.starts_with(prefix)) return true;
    return false;
}

// The library without code, as it grows.
class Names {
public:
    Names() { symbols_.emplace_back(); }

    void add(std::string_view name, unsigned char kind, std::uint64_t size) {
        Elf64_Sym symbol{};
        symbol.st_name = text(name);
        symbol.st_info = static_cast<unsigned char>(ELF64_ST_INFO(STB_GLOBAL, kind));
        symbol.st_shndx = 1;
        symbol.st_value = 16 * symbols_.size();
        symbol.st_size = size;
        symbols_.push_back(symbol);
    }
    std::string bytes() {
        Elf64_Dyn soName{}, end{};
        soName.d_tag = DT_SONAME;
        soName.d_un.d_val = text(SoName);
        end.d_tag = DT_NULL;
        Elf64_Shdr sections[4] = {};
        std::string body;
        section(sections[1], SHT_DYNSYM, body, symbols_.data(), symbols_.size() * sizeof(Elf64_Sym), 2);
        section(sections[2], SHT_STRTAB, body, texts_.data(), texts_.size(), 0);
        const Elf64_Dyn entries[] = {soName, end};
        section(sections[3], SHT_DYNAMIC, body, entries, sizeof entries, 2);
        std::string result;
        append(result, head(sizeof(Elf64_Ehdr) + body.size()));
        result += body;
        for (const Elf64_Shdr& one : sections) append(result, one);
        return result;
    }

private:
    Elf64_Word text(std::string_view name) {
        const auto place = static_cast<Elf64_Word>(texts_.size());
        texts_.append(name).append(1, '\0');
        return place;
    }
    static void section(Elf64_Shdr& header, Elf64_Word type, std::string& body, const void* data,
                        std::size_t size, Elf64_Word link) {
        header.sh_type = type;
        header.sh_offset = sizeof(Elf64_Ehdr) + body.size();
        header.sh_size = size;
        header.sh_link = link;
        header.sh_entsize = type == SHT_DYNSYM    ? sizeof(Elf64_Sym)
                            : type == SHT_DYNAMIC ? sizeof(Elf64_Dyn)
                                                  : 0;
        body.append(static_cast<const char*>(data), size);
        body.resize((body.size() + 7) / 8 * 8);
    }
    static Elf64_Ehdr head(std::size_t sections) {
        Elf64_Ehdr header{};
        std::memcpy(header.e_ident, ELFMAG, SELFMAG);
        header.e_ident[EI_CLASS] = ELFCLASS64;
        header.e_ident[EI_DATA] = ELFDATA2LSB;
        header.e_ident[EI_VERSION] = EV_CURRENT;
        header.e_type = ET_DYN;
        header.e_machine = EM_X86_64;
        header.e_version = EV_CURRENT;
        header.e_shoff = sections;
        header.e_ehsize = sizeof(Elf64_Ehdr);
        header.e_shentsize = sizeof(Elf64_Shdr);
        header.e_shnum = 4;
        return header;
    }

    std::vector<Elf64_Sym> symbols_;
    std::string texts_ = std::string(1, '\0');
};

void addWanted(const Source& file, const Elf64_Shdr& symbols, const Elf64_Shdr& strings, Names& names) {
    const std::string texts = file.part(strings.sh_offset, strings.sh_size);
    for (const Elf64_Sym& symbol : file.records<Elf64_Sym>(symbols.sh_offset, symbols.sh_size)) {
        if (symbol.st_shndx == SHN_UNDEF || symbol.st_name >= texts.size()) continue;
        const std::string_view name = texts.c_str() + symbol.st_name;
        if (isWanted(name)) names.add(name, ELF64_ST_TYPE(symbol.st_info), symbol.st_size);
    }
}

}  // namespace

std::string namesOfLibrary(const std::string& library) {
    const Source file(library);
    const auto head = headOf(file.part(0, sizeof(Elf64_Ehdr)));
    if (!head || head->e_type != ET_DYN || head->e_shentsize != sizeof(Elf64_Shdr)) return {};
    const auto sections = file.records<Elf64_Shdr>(head->e_shoff, head->e_shnum * sizeof(Elf64_Shdr));
    Names names;
    for (const Elf64_Shdr& section : sections)
        if (section.sh_type == SHT_DYNSYM && section.sh_link < sections.size())
            addWanted(file, section, sections[section.sh_link], names);
    for (const char* name : OfTheCLibrary) names.add(name, STT_FUNC, 0);
    return names.bytes();
}

std::vector<Elf64_Phdr> programParts(std::string_view bytes) {
    const auto head = headOf(bytes);
    if (!head || head->e_phoff > bytes.size()) return {};
    const std::size_t whole = (bytes.size() - head->e_phoff) / sizeof(Elf64_Phdr);
    std::vector<Elf64_Phdr> parts(std::min<std::size_t>(head->e_phnum, whole));
    if (!parts.empty())
        std::memcpy(parts.data(), bytes.data() + head->e_phoff, parts.size() * sizeof parts[0]);
    return parts;
}

bool forbidStackCode(std::string& program) {
    const auto head = headOf(program);
    if (!head || head->e_type != ET_EXEC) return false;
    const std::vector<Elf64_Phdr> parts = programParts(program);
    const auto place =
        std::find_if(parts.begin(), parts.end(), [](const auto& part) { return part.p_type == PT_PHDR; });
    if (place == parts.end()) return false;
    Elf64_Phdr stack{};
    stack.p_type = PT_GNU_STACK;
    stack.p_flags = PF_R | PF_W;
    stack.p_align = 16;
    const auto at = head->e_phoff + static_cast<std::size_t>(place - parts.begin()) * sizeof stack;
    std::memcpy(program.data() + at, &stack, sizeof stack);
    return true;
}

}  // namespace tarn::toolchain
