// SPDX-License-Identifier: Apache-2.0
//
// Tables on disk as this system has them, for the benchmarks: opened for each operation, or held open.
#pragma once

#include "kernel/tables/tables_file_mend.h"
#include "kernel/values/owned.h"

#include <cstdint>
#include <string>

namespace bench {

// The files of a table of that many rows, each key field below `indexes` with an index; their path. Balanced: as the
// worst that a rebuilding could leave, with records in the order of the rows, so that near records are of far keys
// and those of the highest levels stand anywhere. Grown: as the rows added one by one leave them.
enum class Nodes { Balanced, Grown };
std::string makeKernel(std::int32_t rows, std::int32_t indexes, Nodes nodes = Nodes::Balanced,
                       const char* what = "kernel");

class KernelRows {
public:
    KernelRows(std::string path, std::int32_t indexes);   // of files that are there
    KernelRows(std::int32_t rows, std::int32_t indexes);  // makes them first
    [[nodiscard]] bool good() const;
    void open();
    void close();
    tarn::RebuiltTable rebuild();

    bool add(std::int32_t i);
    bool find(std::int32_t i);
    bool next();
    bool remove(std::int32_t i);

protected:
    void hold();
    void check(std::int32_t rows);  // unless these are too many
    bool good_ = true;

private:
    void setKey(std::int32_t key);
    [[nodiscard]] std::int32_t valueOfRow(std::int32_t field) const;
    tarn::TableValue table_;
    tarn::RecordValue row_, key_;
    std::string path_;
};

struct KernelGrown : KernelRows {
    KernelGrown(std::int32_t rows, std::int32_t indexes);
};
// The same, held open.
struct KernelHeld : KernelRows {
    KernelHeld(std::int32_t rows, std::int32_t indexes);
};
// Indexes as a rebuilding leaves them.
struct KernelRebuilt : KernelRows {
    KernelRebuilt(std::int32_t rows, std::int32_t indexes);
};
// Brought to the disk after each addition.
struct KernelDurable : KernelRows {
    KernelDurable(std::int32_t rows, std::int32_t indexes);
    bool add(std::int32_t i);
};

}  // namespace bench
