// SPDX-License-Identifier: Apache-2.0
#include "kernel/values/texttransform.h"

#include "kernel/run/errors.h"
#include "kernel/run/runtime.h"
#include "kernel/text/transform.h"
#include "kernel/values/string_text.h"
#include "kernel/values/strings.h"

namespace tarn {

void TextTransform(const StringDescriptor* key, std::int32_t mode, const StringDescriptor* text,
                   StringDescriptor* result) {
    for (const StringDescriptor* const one : {key, text, static_cast<const StringDescriptor*>(result)})
        if (KindOf(one) != KindString) return SetError(ERR_STRING_TYPE);
    bool ok = true;
    const std::string bytes = TransformBytes(NarrowText(key).view(), mode, NarrowText(text).view(), ok);
    if (!ok) SetError(ERR_INTEGER_TYPE);
    StringAssignView(result, bytes);
}

}  // namespace tarn
