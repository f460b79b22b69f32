// SPDX-License-Identifier: Apache-2.0
//
// The example browser: the sub-folders of a folder that hold a `readme.txt`, each an example, with a title, a description
// and a picture. The text is an XML data file with the four fields of ExampleFields in this order; one that is no such
// file is shown as it is, under the name of its folder.
//
// The window `OpenExampleDlg` stands in the program's resources: the icon list "iconlist1", the image "image1", the labels
// "label1" for the title and "label2" for the description, the push buttons "pushbutton1" and so on, and the hidden label
// "lbllastbutton".
#pragma once

#include "kernel/windows/windowing.h"
#include "library/settings/placeholders.h"

#include <string>
#include <vector>

namespace tarn {

inline const Object OpenExampleDlg("OpenExampleDlg");

struct ExampleFields {
    std::string title, description;
    std::string picture;  // a path; from the example's folder unless it is rooted
    std::string files;    // one a line, the main one marked by "*" in front
};
// What the text of an example says, with its placeholders resolved.
ExampleFields SETEXAMPLEFIELDS(const std::string& readme, const PlaceholderFolders& folders);
// The sub-folders that are examples, sorted without regard to case, as users look for names.
std::vector<std::string> EXAMPLESIN(const std::string& folder);
// The class that the example's text names; else the one that has the name of its folder.
std::string EXAMPLEMAINFILE(const std::string& readme, const PlaceholderFolders& places);
// The file marked "*", without the mark, or the only one; empty if neither is there.
std::string GETMAINFILEFROMLIST(const std::string& files);
// Draws the picture file on the image, as large as it fits and no larger than it is, in its middle; without a picture that
// can be read the image is empty.
void DRAWPICTUREONTOIMAGE(const Object& image, const std::string& file);

struct ExampleRequest {
    std::string title;
    std::string folder;   // of the examples, with its separator
    std::string buttons;  // a caption a line; the first is what a double click and Return press
    std::string helpFile, topic;
    PlaceholderFolders places;
};
struct ExampleChoice {
    std::string button;  // the caption of the button that was pressed; empty if the window was closed
    std::string file;    // the main file of the example that was chosen, with its path
};
// Shows the browser. "Help" or "&Help" shows the help and leaves it open; any other button ends it. A button other than
// "Cancel" without an example beeps.
ExampleChoice OPENEXAMPLEDIALOG(const ExampleRequest& request);

}  // namespace tarn
