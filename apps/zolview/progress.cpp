#include "zolview/progress.h"

#include <unistd.h>

#include <iomanip>
#include <ostream>
#include <sstream>
#include <utility>

namespace zolview {

namespace {

/// Work that is done sooner needs no progress.
constexpr std::chrono::milliseconds patience{500};

std::string seconds(std::chrono::milliseconds time) {
    std::ostringstream text;
    text << std::fixed << std::setprecision(1) << static_cast<double>(time.count()) / 1000.0 << " s";
    return text.str();
}

}  // namespace

Progress::Progress(std::ostream& out, Way way, std::string name, Clock clock)
    : out_(out), way_(way), name_(std::move(name)), clock_(std::move(clock)), start_(clock_()) {}

void Progress::stage(const std::string& what) {
    const std::chrono::milliseconds passed = clock_() - start_;
    if (way_ == Way::Lines) out_ << "zolview: " << name_ << ": " << what << " (" << seconds(passed) << ")" << std::endl;
    if (way_ != Way::Line || passed < patience) return;
    clear();
    const std::string line = "zolview: " + name_ + ": " + what + " (" + seconds(passed) + ")";
    shown_ = line.size();
    out_ << line << std::flush;
}

void Progress::clear() {
    if (shown_ == 0) return;
    out_ << '\r' << std::string(shown_, ' ') << '\r' << std::flush;
    shown_ = 0;
}

std::chrono::milliseconds Progress::now() {
    return std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now().time_since_epoch());
}

Progress::Way progressWay(bool asked) {
    if (asked) return Progress::Way::Lines;
    return isatty(STDERR_FILENO) != 0 ? Progress::Way::Line : Progress::Way::None;
}

}  // namespace zolview
