// SPDX-License-Identifier: GPL-3.0-or-later
//
// The names that the resources of the open program have. All of its resource files are compiled into one, in which no two
// resources have one name: what is added to one file must not be called like something in another, or the program no longer
// builds.
//
// Cost: reads each resource file of the program once; a look-up is logarithmic.
#pragma once

#include <map>
#include <string>

namespace tarn {

class ProgramNames {
public:
    static ProgramNames ofAll();
    // Of all resource files but that one; none at all if that one does not belong to the program.
    static ProgramNames beside(const std::string& resourceFile);

    // The file that holds a resource of that name, in any case; empty if none does.
    [[nodiscard]] std::string holderOf(const std::string& name) const;
    [[nodiscard]] std::string all() const;  // one a line, in upper case

private:
    void read(const std::string& file);
    std::map<std::string, std::string> holders_;  // by the name in upper case
};

}  // namespace tarn
