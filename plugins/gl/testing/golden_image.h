#pragma once
// Pictures checked as a person would look at them: against a reference PNG, each channel within
// a tolerance, a few stray pixels allowed (rasterisers differ at edges). On a mismatch the actual
// picture and a difference picture (red where pixels differ) are written next to the test output.
// With NORVANE_UPDATE_GOLDEN=1 in the environment the reference is written instead.

#include <gtest/gtest.h>

#include <string>

#include "engine/picture/picture.h"

namespace kesta::testing {

struct GoldenTolerance {
    int channel = 6;               // largest accepted difference of one channel
    double stray_fraction = 0.01;  // share of pixels allowed beyond it
};

::testing::AssertionResult MatchesGolden(const Picture& actual, const std::string& golden_dir,
                                         const std::string& output_dir, const std::string& name,
                                         GoldenTolerance tolerance = {});

// Writes an RGBA8 picture as PNG; false when it cannot.
bool WritePng(const Picture& picture, const std::string& path);
// Reads a PNG file into an RGBA8 picture; false when it is missing or not a picture.
bool ReadPng(const std::string& path, Picture& picture);

}  // namespace kesta::testing
