// SPDX-License-Identifier: Apache-2.0
//
// A program under the debugger, as far as its variables go: frames with registered values.
#pragma once

#include "kernel/debug/declaredconstants.h"
#include "kernel/debug/showvalues.h"
#include "kernel/run/runtime.h"
#include "kernel/run/state.h"
#include "support/tempfolder.h"
#include "unit/kernel/values_fixture.h"

#include <deque>
#include <fstream>
#include <memory>
#include <string>
#include <string_view>

namespace tarn {

class FrameValues : public Values {
protected:
    void SetUp() override {
        Values::SetUp();
        write("main.cls", "x");
        DebugStart(2, "", "", "", folder_ / "main.cls");
        FunctionEnter("Main", "work", 1);
    }
    void TearDown() override {
        while (FrameCount() > 0) FunctionLeave();
        ForgetShownValues();
        ForgetDeclaredConstants();
        DebugEnd();
        values_.clear();
        numbers_.clear();
        Values::TearDown();
    }

    void write(const std::string& name, std::string_view text) {
        std::ofstream(folder_ / name, std::ios::binary) << text;
    }
    // Registers a variable of the top frame; its value stays until the test ends.
    void* add(std::string_view name, const ValueModel& model, char role = 'V') {
        values_.push_back(std::make_unique<OddValue>(model));
        RegisterVariable(name, role, model.kind, values_.back()->at());
        return values_.back()->at();
    }
    std::int32_t& addInteger(std::string_view name, std::int32_t number) {
        numbers_.push_back(number);
        RegisterVariable(name, 'V', KindInteger, &numbers_.back());
        return numbers_.back();
    }
    static VariableEntry& entry(std::int32_t number) { return variableTable->entries[number - 1]; }

    TempFolder folder_;
    std::deque<std::unique_ptr<OddValue>> values_;
    std::deque<std::int32_t> numbers_;
};

}  // namespace tarn
