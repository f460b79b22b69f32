// SPDX-License-Identifier: Apache-2.0
#include "toolchain/output/messages.h"

#include <algorithm>
#include <array>

namespace tarn::toolchain {
namespace {

struct Entry {
    Problem problem;
    std::string_view text;
};

constexpr auto Texts = std::to_array<Entry>({
    {Problem::BadCharacter, "the character % has no meaning here"},
    {Problem::OpenString, "the string is not closed on its line"},
    {Problem::NumberTooLarge, "the number % is too large for %"},
    {Problem::BadNumber, "% is not a number"},
    {Problem::NameTooLong, "the name '%' is longer than 40 characters"},
    {Problem::Foreign, "'%' has no meaning here: write %"},
    {Problem::FixedDecimals, "a number with a point has at most 4 decimals: a real number is written %E0"},

    {Problem::Expected, "% is expected, but % follows"},
    {Problem::TooDeep, "this is nested too deeply (more than 100 levels)"},
    {Problem::NoClass, "a class begins with '% Class' and its name"},
    {Problem::TextBehindClass, "nothing but comments may stand behind 'End class'"},
    {Problem::NotAccepted, "'%' is a reserved word that this version does not accept"},
    {Problem::BareClassVariable, "a variable of the class begins with 'private var' or 'public var'"},
    {Problem::StatementExpected, "a statement is expected here, not %"},
    {Problem::NameReserved, "'%' is % and cannot be a name"},
    {Problem::NotClosed, "'%' of line % is not closed: '%' is expected, but % follows"},
    {Problem::ElseIf, "the 'if' of line % is not closed: behind an 'else' of the same 'if' write 'elseif'"},
    {Problem::Misplaced, "'%' does not stand here: %"},
    {Problem::NotOpen, "'%' closes nothing: no block of that kind is open here"},
    {Problem::NoResultType,
     "the function '%' gives no value: write 'return' and a type behind its parentheses"},

    {Problem::UnknownName, "'%' is not declared"},
    {Problem::DeclaredTwice, "'%' is declared already, in line %"},
    {Problem::ClassNotFound,
     "the class '%' is not found in the folder of the program or on the inherited path"},
    {Problem::OtherClassName, "the file of class '%' holds the class '%'"},
    {Problem::Ambiguous, "'%' is declared in '%' and in '%': write the class and a full stop in front of it"},
    {Problem::UsedClassHasErrors, "the class '%', which is used here, has errors"},
    {Problem::NotInUses, "'%' is no class of the Uses line"},
    {Problem::NotThatKind, "'%' is %, and % is needed here"},
    {Problem::UsesItself, "the class uses itself"},

    {Problem::TypeMismatch, "% is needed here, and this is %"},
    {Problem::OperandType, "'%' cannot work on % and %"},
    {Problem::ArgumentCount, "'%' takes % argument(s), and here are %"},
    {Problem::VariableNeeded, "argument % of '%' is returned, so a variable is needed"},
    {Problem::CannotAssign, "'%' is % and cannot be changed"},
    {Problem::NoValue, "'%' gives no value"},
    {Problem::ResultUnused, "the result of '%' is not used"},
    {Problem::ConstantNeeded, "this value must be constant"},
    {Problem::StringLength, "the length of a string is a number from 1 to 4096000"},
    {Problem::ReturnMissing, "the function '%' can end without 'return' and a value"},
    {Problem::OutsideLoop, "'%' stands outside of a loop"},
    {Problem::CaseTwice, "this case stands already in line %"},
    {Problem::ConstantCycle, "'%' depends on itself"},
    {Problem::MainHeader, "the function 'main' has no arguments and no result"},
    {Problem::ForwardDiffers, "the head of '%' differs from its declaration in line %"},
    {Problem::NoBody, "the function '%' has no body"},
    {Problem::StepNotPositive, "the step behind 'by' must be at least 1"},
    {Problem::ConstantArithmetic, "this constant cannot be computed: division by zero"},
    {Problem::NoForm, "no form of '%' takes these arguments; there are: %"},
    {Problem::OnerrorHeader, "the function 'onerror' has one argument, an integer, and no result"},
    {Problem::StringResult, "the result of a function is a string without a length"},
    {Problem::TextTooLong, "this text is longer than 4096000 characters"},
    {Problem::EmptyErrorRange, "the range of 'onerror' is empty"},
    {Problem::WalkChanged, "'%' is being walked by 'for each' and cannot be changed here"},
    {Problem::BadBounds, "bounds are constant integers from -32768 to 32767, the lower one first"},
    {Problem::NoSuchField, "% has no field '%'"},
    {Problem::IndexCount, "% has % dimension(s), and here are %"},
    {Problem::NoElements, "% has no elements"},
    {Problem::NoSuchIndex, "'%' is no index of the table"},
    {Problem::AggregateCount, "% takes % value(s) in braces, and here are %"},
    {Problem::AggregateType, "the type of these values in braces cannot be told here"},
    {Problem::TooManyParts, "a % has at most % %"},
    {Problem::BadKey,
     "the field '%' cannot be part of a key: keys are numbers, booleans, enums, strings and arrays of enums"},
    {Problem::NoBounds, "% takes no bounds here"},
    {Problem::LibraryOnly, "% stands in the heads of library functions only"},
    {Problem::CallbackHeader, "a callback function has the arguments (in anEvent : integer, aControl : "
                              "Control, aParameter : integer, out handled : boolean) and no result"},
    {Problem::NoWindow, "the resource file of the class holds no window '%'"},
    {Problem::CannotWalk,
     "'for each' walks a list, an array, a set, a table or the lines of a text, and this is %"},
    {Problem::SameForm, "'%' of line % takes the same kinds of arguments"},
    {Problem::NoControl, "the window '%' has no control '%'"},
    {Problem::NotStored, "% cannot be a constant"},

    {Problem::CannotRead, "the file cannot be read: %"},
    {Problem::CannotWrite, "the file '%' cannot be written: %"},
    {Problem::NoCCompiler, "no C compiler is found (cc or gcc on the path)"},
    {Problem::CCompilerFailed, "the C compiler failed: %"},
    {Problem::NotAClassFile, "'%' is not a class file (*.cls)"},
    {Problem::BadOption, "the option '%' is not known"},
    {Problem::TooManySymbols, "the class has % symbols, and the limit is %"},
    {Problem::LinkFailed, "the program cannot be linked: %"},
    {Problem::ToolFailed, "the compiler failed: %"},
    {Problem::ResourcesFailed, "the resources cannot be compiled: %"},
    {Problem::NotAMainClass, "the class has no function main(), so it cannot be a program"},
    {Problem::NoSuchBackEnd, "TARNWICK_CC names the C compiler '%', which is none of tcc, gcc-O0 and gcc-O2"},
    {Problem::SourcesChange, "the sources change faster than they are compiled"},
});

// Breaks inside a text begin a continuation line.
std::string continued(std::string_view text) {
    std::string result;
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.remove_suffix(1);
    for (const char c : text) {
        if (c == '\r') continue;
        result += c;
        if (c == '\n') result += "> ";
    }
    return result;
}

}  // namespace

std::vector<Problem> allProblems() {
    std::vector<Problem> result;
    for (const Entry& entry : Texts) result.push_back(entry.problem);
    return result;
}

std::string problemText(Problem problem, std::initializer_list<std::string_view> values) {
    const auto found = std::find_if(Texts.begin(), Texts.end(),
                                    [&](const Entry& entry) { return entry.problem == problem; });
    std::string result;
    auto value = values.begin();
    for (const char c : found->text) {
        if (c == '%' && value != values.end())
            result += *value++;
        else
            result += c;
    }
    return result;
}

void Messages::add(const std::string& file, int line, Problem problem,
                   std::initializer_list<std::string_view> values) {
    std::string text = problemText(problem, values);
    const std::string place = file + "(" + std::to_string(line) + ")" + text;
    if (!seen_.emplace(place, static_cast<int>(problem)).second) return;
    ++count_;
    if (list_.size() < MostMessages)
        list_.push_back({file, line, static_cast<int>(problem), std::move(text)});
}

std::string Messages::report(const std::string& name) const {
    std::vector<Message> sorted = list_;
    std::stable_sort(sorted.begin(), sorted.end(), [](const Message& a, const Message& b) {
        return a.file != b.file ? a.file < b.file : a.line < b.line;
    });
    std::string result;
    for (const Message& message : sorted) {
        result += message.file;
        if (message.line > 0) result += "(" + std::to_string(message.line) + ")";
        result += " : error " + std::to_string(message.number) + " " + continued(message.text) + "\n";
    }
    return result + summaryLine(name, count_);
}

std::string summaryLine(const std::string& name, std::size_t count) {
    if (count == 0) return name + " " + std::string(SuccessMark) + "\n";
    return "> " + name + " has " + std::to_string(count) + (count == 1 ? " error.\n" : " errors.\n");
}

}  // namespace tarn::toolchain
