// Which form of its innermost operations a library uses: the best vectors of the processor, or what a test wants.
#pragma once

#if defined(ZOL_USE_HIGHWAY)
#include <hwy/targets.h>
#endif

#include <atomic>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace zolplatform {

/// One of these for each library, of static storage. Choosing a vector variant acts on all code of the process that
/// asks the vector library, so it is for tests only, while no operation runs.
class VectorChoice {
public:
    /// False where a test wants plain or portable loops; true also where there are no vectors.
    [[nodiscard]] bool wantsVectors() const { return mode_.load(std::memory_order_relaxed) == Mode::Best; }

    /// True where a test wants the plain loops.
    [[nodiscard]] bool wantsPlainLoops() const { return mode_.load(std::memory_order_relaxed) == Mode::Plain; }

    /// "plain" and "portable", then what this processor offers, best first.
    static std::vector<std::string> names() {
        std::vector<std::string> result{"plain", "portable"};
        for (const auto& [name, target] : targets()) result.push_back(name);
        return result;
    }

    /// An empty name goes back to the best variant. False, with nothing changed, for an unknown name.
    bool choose(const std::string& name) {
        Mode wanted = Mode::Best;
        std::int64_t target = 0;
        if (name == "plain") {
            wanted = Mode::Plain;
        } else if (name == "portable") {
            wanted = Mode::Portable;
        } else if (!name.empty()) {
            for (const auto& [knownName, knownTarget] : targets()) {
                if (knownName == name) target = knownTarget;
            }
            if (target == 0) return false;
        }
        limitTo(target);
        mode_.store(wanted, std::memory_order_relaxed);
        return true;
    }

private:
    enum class Mode : std::uint8_t { Best, Plain, Portable };

    using Targets = std::vector<std::pair<std::string, std::int64_t>>;

#if defined(ZOL_USE_HIGHWAY)
    static const Targets& targets() {
        // Asked once: a chosen variant would hide the others.
        static const Targets all = [] {
            Targets result;
            for (const std::int64_t target : hwy::SupportedAndGeneratedTargets()) {
                result.emplace_back(hwy::TargetName(target), target);
            }
            return result;
        }();
        return all;
    }

    static void limitTo(std::int64_t target) {
        targets();
        hwy::SetSupportedTargetsForTest(target);
        hwy::GetChosenTarget().DeInit();
    }
#else
    static Targets targets() { return {}; }
    static void limitTo(std::int64_t /*target*/) {}
#endif

    std::atomic<Mode> mode_{Mode::Best};
};

}  // namespace zolplatform
