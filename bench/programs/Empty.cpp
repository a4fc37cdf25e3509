// SPDX-License-Identifier: MIT
// What any C++ program costs to start: the standard library is loaded, and nothing is done.
#include <string>

int main(int count, char** arguments) {
    const std::string name(arguments[0]);
    return count > 100 ? static_cast<int>(name.size()) : 0;
}
