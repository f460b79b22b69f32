// SPDX-License-Identifier: Apache-2.0
//
// The codes of all run-time errors with their texts. One table gives both the named constants (ERR_...) and
// what ErrorMessage says. Ranges: below 600 hardware faults, 6xx values and files, 7xx windows and type
// errors, 8xx process and memory, 9xx external programs, printers, ports and conversions.
//
// Codes from ERR_FIRST_CONTINUABLE to ERR_LAST_CONTINUABLE let the user go on; every other one ends the
// program.
#pragma once

#include <cstdint>

// clang-format off
#define TARN_ERRORS(X)                                                                                      \
    X(5, ACCESS_VIOLATION, "Access violation")                                                              \
    X(29, ILLEGAL_INSTRUCTION, "Illegal instruction")                                                       \
    X(142, FLOAT_DIVIDE_BY_ZERO, "Floating point divide by zero")                                           \
    X(148, INTEGER_DIVIDE_BY_ZERO, "Integer divide by zero")                                                \
    X(150, PRIVILEGED_INSTRUCTION, "Privileged instruction")                                                \
    X(253, STACK_OVERFLOW, "Stack overflow")                                                                \
    X(512, OPERATING_SYSTEM, "Other operating system error")                                                \
    X(601, SET_BOUNDS, "Set reference out of bounds")                                                       \
    X(602, ARRAY_BOUNDS, "Array reference out of bounds")                                                   \
    X(603, LIST_BOUNDS, "List reference out of bounds")                                                     \
    X(604, TABLE_NOT_FOUND, "Table reference not found")                                                    \
    X(610, COMPONENT_INVALID, "Component is missing or invalid")                                            \
    X(611, COMPONENT_TYPE, "Component is the wrong datatype")                                               \
    X(612, ARRAY_REDIM, "Array cannot be redimensioned")                                                    \
    X(613, ARRAY_DIMENSION, "Array has no such dimension")                                                  \
    X(614, SET_REDIM, "Set cannot be redimensioned")                                                        \
    X(615, FIXED_STRING, "Error copying to fixed size string")                                              \
    X(616, FIXED_SET, "Error copying to fixed size set")                                                    \
    X(617, FIXED_ARRAY, "Error copying to fixed size array")                                                \
    X(618, FIXED_LIST, "Error copying to fixed size list")                                                  \
    X(619, FIXED_TABLE, "Error copying to fixed size table")                                                \
    X(634, INDEXED_FIELDS_CHANGED, "Indexed fields have changed")                                           \
    X(635, DUPLICATE_FIELDS, "New record has duplicate fields")                                             \
    X(636, INDEX_VALUE, "Table index value is incorrect")                                                   \
    X(637, UNIQUE_INDEX, "A unique table index cannot be created")                                          \
    X(641, NUMBER_TOO_LARGE, "Integer, fixed point or real number too large")                               \
    X(642, LOST_ACCURACY, "Fixed point or real calculation lost accuracy")                                  \
    X(643, DIVISION_BY_ZERO, "Division by zero")                                                            \
    X(651, FILE_READ, "Cannot read from file")                                                              \
    X(652, FILE_WRITE, "Cannot write to file")                                                              \
    X(653, FILE_VANISHED, "File disappeared while being used")                                              \
    X(654, DISK_FULL, "Disk drive full up")                                                                 \
    X(655, FILE_SIZE, "File on disk is the wrong size")                                                     \
    X(656, INDEX_FILE_SIZE, "Index on disk is the wrong size")                                              \
    X(657, FILE_NAME, "This file name is not allowed")                                                      \
    X(658, COMPONENT_UNREPRESENTABLE, "Component type can't be represented")                                \
    X(659, FILE_COPY_SIZE, "File was wrong size after being copied")                                        \
    X(660, TYPE_NOT_STORABLE, "This type of data can't be stored in a file")                                \
    X(661, FILE_NOT_OPEN, "File has not been opened")                                                       \
    X(671, XML_OVERFLOW, "XML file caused buffer overflow")                                                 \
    X(672, XML_NOT_WELL_FORMED, "XML file is not well formed")                                              \
    X(673, XML_DATA, "XML file data cannot be loaded")                                                      \
    X(674, XML_TOO_COMPLEX, "XML file structure is too complex")                                            \
    X(681, CELL_CONSTRAINT, "Cell constraint violated")                                                     \
    X(682, ENUM_LIMITS, "Value outside enum type's limits")                                                 \
    X(683, LOOP_INVARIANT, "Loop invariant violated")                                                       \
    X(684, PRECONDITION, "Preconditions not satisfied")                                                     \
    X(685, POSTCONDITION, "Postconditions not satisfied")                                                   \
    X(686, LOOP_VARIANT, "Loop variant condition failed")                                                   \
    X(687, ASSERT, "Assert check failed")                                                                   \
    X(701, CONTROL_INIT, "Cannot initialize control object")                                                \
    X(702, WINDOW_NOT_LOADED, "Window is not loaded")                                                       \
    X(703, NO_PROPERTY, "No such property")                                                                 \
    X(704, RESOURCE_FILE_MISSING, "Resource file is missing")                                               \
    X(705, BUFFER_TOO_SMALL, "Buffer is too small")                                                         \
    X(706, OWNER_WINDOW_EXISTS, "Owner window already exists")                                              \
    X(707, NOT_CONTROL_ARRAY, "Not a control array")                                                        \
    X(708, WINDOW_MEMORY, "Not enough memory for window")                                                   \
    X(709, GRAPHICS_INIT, "Cannot initialize graphics")                                                     \
    X(710, BITMAP_INVALID, "Bitmap is invalid")                                                             \
    X(711, ICON_INVALID, "Icon is invalid")                                                                 \
    X(712, FONT_INVALID, "Font is invalid")                                                                 \
    X(713, SHOW_MODAL, "Cannot show modal window")                                                          \
    X(714, SHOW_MODELESS, "Cannot show modeless window")                                                    \
    X(721, WINDOW_NOT_FOUND, "Window not found in resource file")                                           \
    X(722, MENU_NOT_FOUND, "Menu not found in resource file")                                               \
    X(723, CONTROL_NOT_FOUND, "Control not found in resource file")                                         \
    X(724, ICON_NOT_FOUND, "Icon not found in resource file")                                               \
    X(725, WINDOW_SYNTAX, "Window has wrong syntax")                                                        \
    X(726, MENU_SYNTAX, "Menu has wrong syntax")                                                            \
    X(727, CONTROL_INVALID, "Control object is invalid")                                                    \
    X(728, WINDOW_CLASS, "Invalid window class")                                                            \
    X(751, BOOLEAN_TYPE, "Error with boolean type")                                                         \
    X(752, ENUM_TYPE, "Error with enum type")                                                               \
    X(753, INTEGER_TYPE, "Error with integer type")                                                         \
    X(754, FIXED_TYPE, "Error with fixed type")                                                             \
    X(755, REAL_TYPE, "Error with real type")                                                               \
    X(756, STRING_TYPE, "Error with string type")                                                           \
    X(757, RECORD_TYPE, "Error with record type")                                                           \
    X(758, UNION_TYPE, "Error with union type")                                                             \
    X(759, SET_TYPE, "Error with set type")                                                                 \
    X(760, ARRAY_TYPE, "Error with array type")                                                             \
    X(761, LIST_TYPE, "Error with list type")                                                               \
    X(762, TABLE_TYPE, "Error with table type")                                                             \
    X(763, INDEX_TYPE, "Error with index type")                                                             \
    X(764, UNIDENTIFIABLE, "Descriptor or value is unidentifiable")                                         \
    X(765, NOT_EMPTY, "Descriptor should be empty")                                                         \
    X(766, NOT_FIXED_SIZE, "Descriptor should be fixed size")                                               \
    X(802, OUT_OF_MEMORY, "Program ran out of memory")                                                      \
    X(803, OUT_OF_STACK, "Program ran out of stack space")                                                  \
    X(804, BLOCK_TOO_LARGE, "Memory block is too large")                                                    \
    X(805, CANNOT_INITIALIZE, "Cannot initialize program")                                                  \
    X(806, LIBRARY_VERSION, "DLL is wrong version")                                                         \
    X(807, ALREADY_RUNNING, "Program is already running")                                                   \
    X(821, EMPTY_BLOCK, "Cannot allocate empty block")                                                      \
    X(822, BLOCK_LIST_CORRUPT, "Memory block list corrupt")                                                 \
    X(823, NO_SUCH_BLOCK, "No block matches this pointer")                                                  \
    X(824, WRONG_BLOCK_SIZE, "Deallocating wrong number of bytes")                                          \
    X(825, BLOCK_OVERWRITTEN, "Memory block overwritten")                                                   \
    X(826, MEMORY_LEAK, "Some memory was not freed")                                                        \
    X(827, ADT_COPY, "ADT copy failed")                                                                     \
    X(828, ADT_LOAD, "ADT load failed")                                                                     \
    X(829, ADT_SAVE, "ADT save failed")                                                                     \
    X(901, EXEC_NOT_FOUND, "Executable file or path not found")                                             \
    X(902, EXEC_FORMAT, "Invalid executable file format")                                                   \
    X(903, EXEC_MEMORY, "Not enough memory to execute file")                                                \
    X(905, EXEC_WONT_RUN, "File loaded but won't run")                                                      \
    X(906, EXEC_COMMAND_LINE, "Invalid command line")                                                       \
    X(907, EXEC_OUTPUT_FILE, "Invalid redirected output file")                                              \
    X(908, EXEC_PERMISSIONS, "Executable file requires elevated permissions")                               \
    X(909, EXEC_OTHER, "Other executable format error")                                                     \
    X(922, PRINTER_NOT_READY, "Printer not ready")                                                          \
    X(923, PRINTER_INIT, "Cannot initialize printer")                                                       \
    X(924, PRINT_NOT_STARTED, "Startprint was not called")                                                  \
    X(951, PORT_NOT_OPEN, "Port not currently open")                                                        \
    X(952, PORT_FLUSH, "Port could not be flushed")                                                         \
    X(953, PORT_READ, "Port could not be read from")                                                        \
    X(954, PORT_WRITE, "Port could not be written to")                                                      \
    X(955, PORT_STATUS, "Port status could not be checked")                                                 \
    X(956, PORT_IN_USE, "Port is being used by another program")                                            \
    X(957, PORT_OPEN, "Port returned zero or failed to open")                                               \
    X(958, PORT_MISSING, "Port does not exist")                                                             \
    X(959, PORT_SETTINGS, "Port settings are empty or invalid")                                             \
    X(960, PORT_NAME, "Port name is empty or invalid")                                                      \
    X(981, BOOLEAN_CONVERSION, "Boolean type conversion error")                                             \
    X(982, ENUM_CONVERSION, "Enum type conversion error")                                                   \
    X(983, INTEGER_CONVERSION, "Integer type conversion error")                                             \
    X(984, FIXED_CONVERSION, "Fixed type conversion error")                                                 \
    X(985, REAL_CONVERSION, "Real type conversion error")                                                   \
    X(986, STRING_CONVERSION, "String type conversion error")                                               \
    X(987, RECORD_CONVERSION, "Record type conversion error")                                               \
    X(988, UNION_CONVERSION, "Union type conversion error")                                                 \
    X(989, SET_CONVERSION, "Set type conversion error")                                                     \
    X(990, ARRAY_CONVERSION, "Array type conversion error")                                                 \
    X(991, LIST_CONVERSION, "List type conversion error")                                                   \
    X(992, TABLE_CONVERSION, "Table type conversion error")
// clang-format on

namespace tarn {

#define TARN_ERROR_CONSTANT(code, name, text) ERR_##name = (code),
enum ErrorCode : std::int32_t { ERR_NONE = 0, TARN_ERRORS(TARN_ERROR_CONSTANT) };
#undef TARN_ERROR_CONSTANT

inline constexpr std::int32_t ERR_FIRST_EXECUTABLE = 901, ERR_LAST_EXECUTABLE = 909;
inline constexpr std::int32_t ERR_FIRST_CONTINUABLE = 901, ERR_LAST_CONTINUABLE = 992;

// The text of a code: empty for 0, "Application defined error" for a code that is not in the table. Never
// allocates, so that a report about a broken process can use it.
const char* ErrorText(std::int32_t code);

}  // namespace tarn
