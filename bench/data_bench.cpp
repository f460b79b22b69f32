// SPDX-License-Identifier: Apache-2.0
// Data files, each kind beside what else reads and writes it: the files, the timing and the entry.
#include "data_bench.h"

#include "kernel/data/typeinfo/typeinfo.h"
#include "kernel/lists/lists.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <malloc.h>
#include <random>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace bench {

using namespace tarn;

namespace {

// The folder of this run. Its static object goes last, and the files with it.
class Folder {
public:
    Folder() {
        std::string pattern = (std::filesystem::temp_directory_path() / "tarnwick-bench-XXXXXX").string();
        const char* const made = ::mkdtemp(pattern.data());
        if (made == nullptr) std::exit(1);
        path_ = made;
    }
    ~Folder() {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    [[nodiscard]] const std::string& path() const { return path_; }

private:
    std::string path_;
};

constexpr std::array columns = {"id", "name", "town", "amount", "weight", "day", "pieces", "paid"};
constexpr std::int32_t wideColumns = 40;

std::array<std::string, columns.size()> cellsOf(std::int32_t i) {
    const Order o = orderNumber(i);
    return {std::to_string(o.id),     o.name, o.town, o.amount, o.weight, o.day,
            std::to_string(o.pieces), o.paid};
}

std::string wideCell(std::int32_t row, std::int32_t column) {
    char text[40];
    std::snprintf(text, sizeof text, "text %02d of the row %06d", column, row % 1000000);
    return text;
}

std::string wideRows(std::int64_t megabytes, std::string_view head, std::string_view foot,
                     const std::function<void(std::string&, std::int32_t)>& add) {
    std::string text(head);
    const auto size = static_cast<std::size_t>(megabytes * Megabyte);
    for (std::int32_t row = 1; text.size() < size; ++row) add(text, row);
    return text.append(foot);
}

}  // namespace

Order orderNumber(std::int32_t i) {
    constexpr const char* towns[] = {"Aarhus", "Berlin",   "Cork",   "Dover",
                                     "Essen",  "Florence", "Geneva", "Hanover"};
    std::minstd_rand random(static_cast<std::uint32_t>(i));
    const auto below = [&](std::uint32_t n) { return static_cast<std::int32_t>(random() % n); };
    below(1);
    char amount[20], weight[20], day[20];
    std::snprintf(amount, sizeof amount, "%d.%02d", below(10000), below(100));
    std::snprintf(weight, sizeof weight, "%d.%05d", below(300), below(100000));
    std::snprintf(day, sizeof day, "20%02d-%02d-%02d", 10 + below(20), 1 + below(12), 1 + below(28));
    return {i,
            below(1000),
            "Customer " + std::to_string(below(1000000)),
            towns[below(8)],
            amount,
            weight,
            day,
            below(2) != 0 ? "True" : "False"};
}

// ---- files ----

std::string pathOf(std::string_view name) {
    static const Folder folder;
    return folder.path() + "/" + std::string(name);
}

std::string fileOf(std::string_view name, const std::function<std::string()>& make) {
    const std::string path = pathOf(name);
    if (!std::filesystem::exists(path)) writeAt(path, 0, make());
    return path;
}

void writeAt(const std::string& path, std::int64_t offset, std::string_view bytes) {
    constexpr std::size_t block = 4096;
    const int file = ::open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
    while (file >= 0 && !bytes.empty()) {
        const ssize_t done = ::pwrite(file, bytes.data(), std::min(bytes.size(), block), offset);
        if (done <= 0) std::abort();
        bytes.remove_prefix(static_cast<std::size_t>(done));
        offset += done;
    }
    ::close(file);
}

std::int64_t sizeOf(const std::string& path) {
    return static_cast<std::int64_t>(std::filesystem::file_size(path));
}

std::string contentOf(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
}

std::string ordersCsv(std::int32_t rows) {
    return fileOf("orders" + std::to_string(rows) + ".csv", [=] {
        std::string text;
        for (const char* const name : columns) (text += text.empty() ? "" : ",") += name;
        for (std::int32_t i = 1; i <= rows; ++i) {
            char separator = '\n';
            for (const std::string& cell : cellsOf(i)) (text += separator) += cell, separator = ',';
        }
        return text + "\n";
    });
}

std::string ordersXml(std::int32_t rows) {
    return fileOf("orders" + std::to_string(rows) + ".xml", [=] {
        std::string text = "<?xml version=\"1.0\"?>\n<orders>\n";
        for (std::int32_t i = 1; i <= rows; ++i) {
            const auto cells = cellsOf(i);
            text += "  <order>\n";
            for (std::size_t n = 0; n < columns.size(); ++n) {
                const std::string name = columns[n];
                text += "    <" + name + ">" + cells[n] + "</" + name + ">\n";
            }
            text += "  </order>\n";
        }
        return text + "</orders>\n";
    });
}

std::string ordersXmlAttributes(std::int32_t rows) {
    return fileOf("attributes" + std::to_string(rows) + ".xml", [=] {
        std::string text = "<?xml version=\"1.0\"?>\n<orders>\n";
        for (std::int32_t i = 1; i <= rows; ++i) {
            const auto cells = cellsOf(i);
            text += "  <order";
            for (std::size_t n = 0; n < columns.size(); ++n)
                text += std::string(" ") + columns[n] + "=\"" + cells[n] + "\"";
            text += "/>\n";
        }
        return text + "</orders>\n";
    });
}

std::string wideCsv(std::int64_t megabytes) {
    return fileOf("wide" + std::to_string(megabytes) + ".csv", [=] {
        std::string head;
        for (std::int32_t n = 1; n <= wideColumns; ++n) head += (n > 1 ? ",c" : "c") + std::to_string(n);
        return wideRows(megabytes, head + "\n", "", [](std::string& text, std::int32_t row) {
            for (std::int32_t n = 1; n <= wideColumns; ++n)
                (text += wideCell(row, n)) += n < wideColumns ? ',' : '\n';
        });
    });
}

std::string wideXml(std::int64_t megabytes) {
    return fileOf("wide" + std::to_string(megabytes) + ".xml", [=] {
        return wideRows(megabytes, "<rows>\n", "</rows>\n", [](std::string& text, std::int32_t row) {
            text += "<row>";
            for (std::int32_t n = 1; n <= wideColumns; ++n) {
                const std::string name = "c" + std::to_string(n);
                text += "<" + name + ">" + wideCell(row, n) + "</" + name + ">";
            }
            text += "</row>\n";
        });
    });
}

// ---- values ----

const std::string orderDeclaration = "Torder : record\n"
                                     "\tid : integer\n"
                                     "\tname : string[15]\n"
                                     "\ttown : string[8]\n"
                                     "\tamount : fixed\n"
                                     "\tweight : real\n"
                                     "\tday : Tdatetime[24]\n"
                                     "\tpieces : integer\n"
                                     "\tpaid : boolean\n"
                                     "end record\n";

const std::string wideDeclaration = [] {
    std::string text = "Twide : record\n";
    for (std::int32_t n = 1; n <= wideColumns; ++n) text += "\tc" + std::to_string(n) + " : string[40]\n";
    return text + "end record\n";
}();

void initList(ListDescriptor* list, const std::string& declaration) {
    RecordValue row;
    TypeInfoToRecord(String(declaration).get(), row.get());
    ListInit(list, UNBOUNDED, row.get(), KindRecord, false);
}

void initTable(TableDescriptor* table, const std::string& declaration, std::int32_t indexes) {
    RecordValue row;
    TypeInfoToRecord(String(declaration).get(), row.get());
    KeyMaps maps{};
    for (std::int32_t n = 0; n < indexes; ++n) maps[static_cast<std::size_t>(n)] = MakeKeyMap(n + 1);
    TableInit(table, UNBOUNDED, row.get(), maps, "", false);
}

// ---- timing ----

void repeat(benchmark::State& state, const std::function<bool()>& work, const std::function<void()>& after) {
    if (!work()) return state.SkipWithError("the work was not done");
    if (after != nullptr) after();
    for (auto _ : state) {
        if (!work()) return state.SkipWithError("the work was not done");
        if (after == nullptr) continue;
        state.PauseTiming();
        after();
        state.ResumeTiming();
    }
}

void setBytes(benchmark::State& state, std::int64_t bytes) {
    state.SetBytesProcessed(state.iterations() * bytes);
}
void setRows(benchmark::State& state, std::int64_t rows) {
    state.SetItemsProcessed(state.iterations() * rows);
}

double runProgram(const std::vector<std::string>& words, const std::string& input,
                  const std::string& output) {
    const std::string script = pathOf("input.txt");
    std::ofstream(script, std::ios::binary) << input;
    std::vector<char*> arguments;
    for (const std::string& word : words) arguments.push_back(const_cast<char*>(word.c_str()));
    arguments.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, STDIN_FILENO, script.c_str(), O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, STDOUT_FILENO, output.c_str(), O_WRONLY | O_CREAT | O_TRUNC,
                                     0644);
    pid_t child = 0;
    const bool started =
        ::posix_spawnp(&child, arguments[0], &actions, nullptr, arguments.data(), environ) == 0;
    posix_spawn_file_actions_destroy(&actions);
    int status = 1;
    rusage used{};
    if (!started || ::wait4(child, &status, 0, &used) != child || status != 0) return -1;
    const auto seconds = [](const timeval& t) {
        return static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_usec) * 1e-6;
    };
    return seconds(used.ru_utime) + seconds(used.ru_stime);
}

void timeProgram(benchmark::State& state, const std::vector<std::string>& words, const std::string& input,
                 const std::string& output) {
    double start = 1;
    for (int i = 0; i < 5; ++i) start = std::min(start, runProgram({words[0], ":memory:"}, ""));
    for (auto _ : state) {
        const double used = runProgram(words, input, output);
        if (used < 0 || start < 0) return state.SkipWithError("the program failed");
        state.SetIterationTime(std::max(used - start, 1e-9));
    }
}

}  // namespace bench

// Memory that was freed stays with the program, as the kernel's does, whoever allocated it.
int main(int argc, char** argv) {
    if (argc == 5 && std::string_view(argv[1]) == bench::diskMemoryOption)
        return bench::printDiskMemory(argv[2], argv[3], argv[4]);
    ::mallopt(M_MMAP_THRESHOLD, INT32_MAX);
    ::mallopt(M_TRIM_THRESHOLD, INT32_MAX);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
}
