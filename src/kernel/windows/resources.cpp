// SPDX-License-Identifier: Apache-2.0
#include "kernel/windows/resources.h"

namespace tarn {

std::string CutResourceError(std::string error) {
    if (error.size() > RESOURCE_ERROR_SIZE) error.resize(RESOURCE_ERROR_SIZE);
    return error;
}

ResourceText CutResourceText(ResourceText answer, const std::string& file) {
    if (answer.text.size() > RESOURCE_TEXT_SIZE) {
        answer.text.resize(RESOURCE_TEXT_SIZE);
        answer.text.resize(answer.text.rfind('\n') + 1);
        answer.error = "The list of '" + file + "' is longer than " + std::to_string(RESOURCE_TEXT_SIZE) +
                       " characters.";
    }
    answer.error = CutResourceError(std::move(answer.error));
    return answer;
}

}  // namespace tarn
