// What the program is at, for whoever waits for it.
#pragma once

#include <chrono>
#include <functional>
#include <iosfwd>
#include <string>

namespace zolview {

/// Tells the stages of work that lasts.
class Progress {
public:
    enum class Way {
        None,
        Line,  ///< one line of a terminal that changes and goes away, once the work has lasted for half a second
        Lines  ///< a line for each stage with the time since the start
    };
    using Clock = std::function<std::chrono::milliseconds()>;

    Progress(std::ostream& out, Way way, std::string name, Clock clock = now);
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;
    ~Progress() { clear(); }

    /// Tells that a stage begins, such as "reading".
    void stage(const std::string& what);

    /// Takes the line off the terminal, so that other text can follow.
    void clear();

private:
    static std::chrono::milliseconds now();

    std::ostream& out_;
    Way way_;
    std::string name_;
    Clock clock_;
    std::chrono::milliseconds start_;
    std::size_t shown_ = 0;  // characters on the terminal's line
};

/// Lines where they are asked for, else one line where standard error is a terminal.
Progress::Way progressWay(bool asked);

}  // namespace zolview
