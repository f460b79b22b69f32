// SPDX-License-Identifier: Apache-2.0
//
// The operations on resource files as modules call them. Their errors are texts, empty on success, so none of
// them touches the error cell. Cost: each reads the whole file.
#pragma once

#include "platform/resources/resource.h"

namespace tarn {

using platform::CompileResources;
using platform::ObjectArray;
using platform::ResourceCommonId;
using platform::ResourceDelete;
using platform::ResourceFolder;
using platform::ResourceInfo;
using platform::ResourceRead;
using platform::ResourceRename;
using platform::ResourceText;
using platform::ResourceTypelist;
using platform::ResourceValue;
using platform::ResourceWrite;
using platform::ResourceWriteText;

}  // namespace tarn
