// SPDX-License-Identifier: Apache-2.0
//
// The messages of the compiler and the make tool: a table of numbers and texts, and the list of a run.
//
// A message line reads `file(line) : error number text`; the environment jumps to the file and the line, and
// asks for help by the number. A line that begins with ">" continues the message above it.
#pragma once

#include <initializer_list>
#include <set>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tarn::toolchain {

// The file of the compiler's messages, and of a whole build's, beside the name that the compiler is called by.
inline constexpr std::string_view ResultFile = "sarn.err";
// Stands in a run's messages exactly when nothing went wrong.
inline constexpr std::string_view SuccessMark = ": 0 errors.";

enum class Problem : int {
    BadCharacter = 1001,
    OpenString = 1002,
    NumberTooLarge = 1003,
    BadNumber = 1004,
    NameTooLong = 1005,
    Foreign = 1006,
    FixedDecimals = 1007,

    Expected = 1101,
    TooDeep = 1102,
    NoClass = 1103,
    TextBehindClass = 1104,
    NotAccepted = 1105,
    BareClassVariable = 1106,
    StatementExpected = 1107,
    NameReserved = 1108,
    NotClosed = 1109,
    ElseIf = 1110,
    Misplaced = 1111,
    NotOpen = 1112,
    NoResultType = 1113,

    UnknownName = 1201,
    DeclaredTwice = 1202,
    ClassNotFound = 1203,
    OtherClassName = 1204,
    Ambiguous = 1205,
    UsedClassHasErrors = 1206,
    NotInUses = 1207,
    NotThatKind = 1208,
    UsesItself = 1209,

    TypeMismatch = 1301,
    OperandType = 1302,
    ArgumentCount = 1303,
    VariableNeeded = 1304,
    CannotAssign = 1305,
    NoValue = 1306,
    ResultUnused = 1307,
    ConstantNeeded = 1308,
    StringLength = 1309,
    ReturnMissing = 1310,
    OutsideLoop = 1311,
    CaseTwice = 1312,
    ConstantCycle = 1313,
    MainHeader = 1314,
    ForwardDiffers = 1315,
    NoBody = 1316,
    StepNotPositive = 1317,
    ConstantArithmetic = 1318,
    NoForm = 1319,
    OnerrorHeader = 1320,
    StringResult = 1321,
    TextTooLong = 1322,
    EmptyErrorRange = 1323,
    WalkChanged = 1324,
    BadBounds = 1325,
    NoSuchField = 1326,
    IndexCount = 1327,
    NoElements = 1328,
    NoSuchIndex = 1329,
    AggregateCount = 1330,
    AggregateType = 1331,
    TooManyParts = 1332,
    BadKey = 1333,
    NoBounds = 1334,
    LibraryOnly = 1335,
    CallbackHeader = 1336,
    NoWindow = 1337,
    CannotWalk = 1338,
    SameForm = 1339,
    NotStored = 1340,
    NoControl = 1341,

    CannotRead = 1901,
    CannotWrite = 1902,
    NoCCompiler = 1903,
    CCompilerFailed = 1904,
    NotAClassFile = 1905,
    BadOption = 1906,
    TooManySymbols = 1907,
    LinkFailed = 1908,
    ToolFailed = 1909,
    ResourcesFailed = 1910,
    NotAMainClass = 1911,
    NoSuchBackEnd = 1912,
    SourcesChange = 1913,
};

// All problems, in the order of their numbers' groups.
std::vector<Problem> allProblems();

// The text of a problem with its `%` signs replaced in order; those without a value stay.
std::string problemText(Problem problem, std::initializer_list<std::string_view> values);

struct Message {
    std::string file;
    int line = 0;  // 0: the file as a whole
    int number = 0;
    std::string text;  // further lines are continuations
};

// The messages of one run. After `MostMessages` further ones are counted and dropped.
class Messages {
public:
    static constexpr std::size_t MostMessages = 50;

    void add(const std::string& file, int line, Problem problem,
             std::initializer_list<std::string_view> values = {});
    [[nodiscard]] bool empty() const { return count_ == 0; }
    [[nodiscard]] std::size_t count() const { return count_; }
    [[nodiscard]] const std::vector<Message>& list() const { return list_; }
    // The message lines in order of file and line, then the summary line for `name`.
    [[nodiscard]] std::string report(const std::string& name) const;

private:
    std::vector<Message> list_;
    std::set<std::pair<std::string, int>> seen_;  // one syntax or name message of a kind for each line
    std::size_t count_ = 0;
};

// The line that ends a report of `count` messages.
std::string summaryLine(const std::string& name, std::size_t count);

}  // namespace tarn::toolchain
