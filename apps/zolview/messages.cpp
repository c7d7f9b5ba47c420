#include "zolview/messages.h"

#include "viewing/text/plain_text.h"

#include <iostream>

namespace zolview {

using viewing::plainText;

ExitStatus fail(ExitStatus status, const std::string& message) {
    std::cerr << "zolview: " << plainText(message) << '\n';
    return status;
}

void tell(const std::string& input, const std::vector<std::string>& notes) {
    for (const std::string& note : notes)
        std::cerr << "zolview: " << plainText(input) << ": " << plainText(note) << '\n';
}

}  // namespace zolview
