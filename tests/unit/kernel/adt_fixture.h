// SPDX-License-Identifier: Apache-2.0
//
// Generic operations on values of every kind.
#pragma once

#include "kernel/values/adt_kinds.h"
#include "unit/kernel/values_fixture.h"

#include <gtest/gtest.h>

namespace tarn {

inline ValueModel person(std::string_view name, std::int32_t age) {
    using namespace model;
    return Record(
        {Number(KindBoolean, 1), Text(name), Number(KindInteger, age), Text("cap", 12), Real(age * 0.5)});
}

class GenericOperations : public Values {};

}  // namespace tarn
