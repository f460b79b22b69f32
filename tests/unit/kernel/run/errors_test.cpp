// SPDX-License-Identifier: Apache-2.0
#include "kernel/run/errors.h"

#include "kernel/run/runtime.h"

#include <gtest/gtest.h>
#include <set>

using namespace tarn;

namespace {

class Errors : public ::testing::Test {
protected:
    void SetUp() override { ClearError(); }
    void TearDown() override { ClearError(); }
};

// Written out a second time on purpose: the table of the kernel must not change unnoticed.
constexpr struct {
    std::int32_t code;
    const char* text;
} texts[] = {
    {5, "Access violation"},
    {29, "Illegal instruction"},
    {142, "Floating point divide by zero"},
    {148, "Integer divide by zero"},
    {150, "Privileged instruction"},
    {253, "Stack overflow"},
    {512, "Other operating system error"},
    {601, "Set reference out of bounds"},
    {602, "Array reference out of bounds"},
    {603, "List reference out of bounds"},
    {604, "Table reference not found"},
    {610, "Component is missing or invalid"},
    {611, "Component is the wrong datatype"},
    {612, "Array cannot be redimensioned"},
    {613, "Array has no such dimension"},
    {614, "Set cannot be redimensioned"},
    {615, "Error copying to fixed size string"},
    {616, "Error copying to fixed size set"},
    {617, "Error copying to fixed size array"},
    {618, "Error copying to fixed size list"},
    {619, "Error copying to fixed size table"},
    {634, "Indexed fields have changed"},
    {635, "New record has duplicate fields"},
    {636, "Table index value is incorrect"},
    {637, "A unique table index cannot be created"},
    {641, "Integer, fixed point or real number too large"},
    {642, "Fixed point or real calculation lost accuracy"},
    {643, "Division by zero"},
    {651, "Cannot read from file"},
    {652, "Cannot write to file"},
    {653, "File disappeared while being used"},
    {654, "Disk drive full up"},
    {655, "File on disk is the wrong size"},
    {656, "Index on disk is the wrong size"},
    {657, "This file name is not allowed"},
    {658, "Component type can't be represented"},
    {659, "File was wrong size after being copied"},
    {660, "This type of data can't be stored in a file"},
    {661, "File has not been opened"},
    {671, "XML file caused buffer overflow"},
    {672, "XML file is not well formed"},
    {673, "XML file data cannot be loaded"},
    {674, "XML file structure is too complex"},
    {681, "Cell constraint violated"},
    {682, "Value outside enum type's limits"},
    {683, "Loop invariant violated"},
    {684, "Preconditions not satisfied"},
    {685, "Postconditions not satisfied"},
    {686, "Loop variant condition failed"},
    {687, "Assert check failed"},
    {701, "Cannot initialize control object"},
    {702, "Window is not loaded"},
    {703, "No such property"},
    {704, "Resource file is missing"},
    {705, "Buffer is too small"},
    {706, "Owner window already exists"},
    {707, "Not a control array"},
    {708, "Not enough memory for window"},
    {709, "Cannot initialize graphics"},
    {710, "Bitmap is invalid"},
    {711, "Icon is invalid"},
    {712, "Font is invalid"},
    {713, "Cannot show modal window"},
    {714, "Cannot show modeless window"},
    {721, "Window not found in resource file"},
    {722, "Menu not found in resource file"},
    {723, "Control not found in resource file"},
    {724, "Icon not found in resource file"},
    {725, "Window has wrong syntax"},
    {726, "Menu has wrong syntax"},
    {727, "Control object is invalid"},
    {728, "Invalid window class"},
    {751, "Error with boolean type"},
    {752, "Error with enum type"},
    {753, "Error with integer type"},
    {754, "Error with fixed type"},
    {755, "Error with real type"},
    {756, "Error with string type"},
    {757, "Error with record type"},
    {758, "Error with union type"},
    {759, "Error with set type"},
    {760, "Error with array type"},
    {761, "Error with list type"},
    {762, "Error with table type"},
    {763, "Error with index type"},
    {764, "Descriptor or value is unidentifiable"},
    {765, "Descriptor should be empty"},
    {766, "Descriptor should be fixed size"},
    {802, "Program ran out of memory"},
    {803, "Program ran out of stack space"},
    {804, "Memory block is too large"},
    {805, "Cannot initialize program"},
    {806, "DLL is wrong version"},
    {807, "Program is already running"},
    {821, "Cannot allocate empty block"},
    {822, "Memory block list corrupt"},
    {823, "No block matches this pointer"},
    {824, "Deallocating wrong number of bytes"},
    {825, "Memory block overwritten"},
    {826, "Some memory was not freed"},
    {827, "ADT copy failed"},
    {828, "ADT load failed"},
    {829, "ADT save failed"},
    {901, "Executable file or path not found"},
    {902, "Invalid executable file format"},
    {903, "Not enough memory to execute file"},
    {905, "File loaded but won't run"},
    {906, "Invalid command line"},
    {907, "Invalid redirected output file"},
    {908, "Executable file requires elevated permissions"},
    {909, "Other executable format error"},
    {922, "Printer not ready"},
    {923, "Cannot initialize printer"},
    {924, "Startprint was not called"},
    {951, "Port not currently open"},
    {952, "Port could not be flushed"},
    {953, "Port could not be read from"},
    {954, "Port could not be written to"},
    {955, "Port status could not be checked"},
    {956, "Port is being used by another program"},
    {957, "Port returned zero or failed to open"},
    {958, "Port does not exist"},
    {959, "Port settings are empty or invalid"},
    {960, "Port name is empty or invalid"},
    {981, "Boolean type conversion error"},
    {982, "Enum type conversion error"},
    {983, "Integer type conversion error"},
    {984, "Fixed type conversion error"},
    {985, "Real type conversion error"},
    {986, "String type conversion error"},
    {987, "Record type conversion error"},
    {988, "Union type conversion error"},
    {989, "Set type conversion error"},
    {990, "Array type conversion error"},
    {991, "List type conversion error"},
    {992, "Table type conversion error"},
};

TEST_F(Errors, EveryCodeHasItsText) {
    for (const auto& row : texts) EXPECT_EQ(ErrorMessage(row.code), row.text) << row.code;
}

TEST_F(Errors, EveryOtherCodeIsAnApplicationError) {
    std::set<std::int32_t> known{0};
    for (const auto& row : texts) known.insert(row.code);
    for (std::int32_t code = -100; code < 2000; ++code) {
        if (known.count(code) == 0) {
            EXPECT_EQ(ErrorMessage(code), "Application defined error") << code;
        }
    }
    for (const std::int32_t code : {INT32_MIN, INT32_MAX, 32768, 65535})
        EXPECT_EQ(ErrorMessage(code), "Application defined error") << code;
}

TEST_F(Errors, ZeroHasTheEmptyText) {
    EXPECT_EQ(ErrorMessage(0), "");
}

TEST_F(Errors, ConstantsNameTheirCodes) {
    EXPECT_EQ(ERR_ACCESS_VIOLATION, 5);
    EXPECT_EQ(ERR_FIXED_STRING, 615);
    EXPECT_EQ(ERR_STRING_TYPE, 756);
    EXPECT_EQ(ERR_MEMORY_LEAK, 826);
    EXPECT_EQ(ERR_FIRST_EXECUTABLE, ERR_EXEC_NOT_FOUND);
    EXPECT_EQ(ERR_LAST_EXECUTABLE, ERR_EXEC_OTHER);
    EXPECT_EQ(ERR_LAST_CONTINUABLE, ERR_TABLE_CONVERSION);
}

TEST_F(Errors, TheFirstErrorWins) {
    SetError(601);
    SetError(602);
    EXPECT_EQ(ErrorCell(), 601);
}

TEST_F(Errors, ClearErrorClearsCellAndLastError) {
    SetError(601);
    ContinueAfterError();
    EXPECT_EQ(LastError(), 601);
    SetError(602);
    ClearError();
    EXPECT_EQ(ErrorCell(), 0);
    EXPECT_EQ(LastError(), 0);
}

TEST_F(Errors, AssertSets687AndKeepsItsText) {
    Assert(true, "not this");
    EXPECT_EQ(ErrorCell(), 0);
    Assert(false, "why");
    EXPECT_EQ(ErrorCell(), 687);
    EXPECT_EQ(AssertText(), "why");
    ClearError();
    Assert(false);
    EXPECT_EQ(ErrorCell(), 687);
    EXPECT_EQ(AssertText(), "");
}

TEST_F(Errors, AssertTextIsCutAt255) {
    Assert(false, std::string(254, 'a') + "bc");
    EXPECT_EQ(AssertText(), std::string(254, 'a') + "b");
    ClearError();
    Assert(false, std::string(1000000, 'x'));
    EXPECT_EQ(AssertText().size(), 255U);
}

TEST_F(Errors, AnAssertUnderAPendingErrorChangesNothing) {
    Assert(false, "first");
    ClearError();
    SetError(601);
    Assert(false, "second");
    EXPECT_EQ(ErrorCell(), 601);
    EXPECT_EQ(AssertText(), "first");
}

TEST_F(Errors, ConditionsOfFunctionsAreGuarded) {
    Precondition(true);
    Postcondition(true);
    EXPECT_EQ(ErrorCell(), 0);
    Precondition(false);
    EXPECT_EQ(ErrorCell(), 684);
    Postcondition(false);
    EXPECT_EQ(ErrorCell(), 684);
    ClearError();
    Postcondition(false);
    EXPECT_EQ(ErrorCell(), 685);
}

}  // namespace
