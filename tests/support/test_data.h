// Where optional sample files are, and reproducible random numbers.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>

#include "support/folders.h"

namespace zoltest {

/// Folder of the optional DICOM samples: $ZOL_SAMPLES, or ../shared/dicom beside the project. Empty when absent.
inline std::filesystem::path sampleFolder() {
    namespace fs = std::filesystem;
    if (const char* set = std::getenv("ZOL_SAMPLES")) return fs::is_directory(set) ? fs::path(set) : fs::path();
    const fs::path beside = sourceFolder().parent_path() / "shared" / "dicom";
    return fs::is_directory(beside) ? beside : fs::path();
}

/// A generator with a fixed seed, or with $ZOL_TEST_SEED to explore; the seed is printed when a test fails.
class Random {
public:
    explicit Random(std::uint64_t seed) : seed_(seed) {
        if (const char* set = std::getenv("ZOL_TEST_SEED")) seed_ = std::strtoull(set, nullptr, 10);
        engine_.seed(seed_);
    }
    ~Random() {
        if (::testing::Test::HasFailure())
            std::printf("seed %llu; ZOL_TEST_SEED runs with it again\n", static_cast<unsigned long long>(seed_));
    }
    Random(const Random&) = delete;
    Random& operator=(const Random&) = delete;

    /// Uniform in [low, high].
    int integer(int low, int high) {
        const auto range = static_cast<std::uint64_t>(static_cast<std::int64_t>(high) - low) + 1;
        return static_cast<int>(low + static_cast<std::int64_t>(engine_() % range));
    }
    /// Uniform in [low, high).
    double real(double low, double high) {
        return low + (high - low) * (static_cast<double>(engine_() >> 11) * 0x1.0p-53);
    }
    bool chance(double probability) { return real(0.0, 1.0) < probability; }
    std::uint64_t bits() { return engine_(); }
    [[nodiscard]] std::uint64_t seed() const { return seed_; }

private:
    std::uint64_t seed_;
    std::mt19937_64 engine_;
};

}  // namespace zoltest
