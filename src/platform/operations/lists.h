// SPDX-License-Identifier: Apache-2.0
//
// Windowing operations: rows of list boxes, icon lists and combo boxes, and the named values of a window. Rows
// are numbered from 1 and have no line end. Cost: a row is reached at once; inserting and removing move the
// rows behind. Named values are looked for one by one.
#pragma once

#include "platform/object.h"

namespace tarn::platform {

Answer<int> GetListCount(const Object& list);
Answer<int> GetListIndex(const Object& list);  // 0 for none
Code SetListIndex(const Object& list, int row);
Answer<std::string> GetList(const Object& list, int row);
Code SetList(const Object& list, int row, std::string_view text);  // the row's picture stays
Code SetList(const Object& list, int row, std::string_view text, std::string_view picture);
Code AddItem(const Object& list, std::string_view text, std::string_view picture = {});
Code AddItem(const Object& list, int row, std::string_view text, std::string_view picture = {});
Code RemoveItem(const Object& list, int row);
// Removes all rows. Of a window or an image: empties the picture that was drawn on it.
Code Clear(const Object& object);

// Named values, which pages of a wizard hand on to each other. Names compare in any case and keep the form in
// which they were first set.
Answer<std::string> GetArrayValue(const Object& window, std::string_view name);  // empty if there is none
Code SetArrayValue(const Object& window, std::string_view name, std::string_view value);
// "Name=value" of each name that fits `pattern` (any case; `*` stands for any characters, `?` for one), in
// the order in which the names were first set.
Answer<std::vector<std::string>> GetArrayValues(const Object& window, std::string_view pattern);
// Sets each "Name=value"; other names keep their values. What has no "=" is a name with an empty value; an
// empty name is left out.
Code SetArrayValues(const Object& window, const std::vector<std::string>& values);

}  // namespace tarn::platform
