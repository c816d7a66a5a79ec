#include "encoders/graph/Resampling.h"

#include <gtest/gtest.h>

#include <array>

using namespace Qorvane::Encoders;

namespace {

constexpr std::array filters{ResamplingFilter::lanczos, ResamplingFilter::bilinear,
                             ResamplingFilter::bicubic};

TEST(Resampling, KeepsAnEvenLineAtAnyRatio)
{
    for (const ResamplingFilter filter : filters) {
        for (const int to : {1, 64, 224, 225, 336, 1024}) {
            const auto matrix = resamplingMatrix(224, to, filter, false);
            for (size_t row = 0; row < size_t(to); ++row) {
                double sum = 0;
                for (size_t column = 0; column < 224; ++column)
                    sum += double(matrix[row * 224 + column]);
                ASSERT_NEAR(sum, 1, 1e-5) << to;
            }
        }
    }
}

TEST(Resampling, ChangesNothingAtTheSameSize)
{
    for (const ResamplingFilter filter : filters) {
        const auto matrix = resamplingMatrix(8, 8, filter, false);
        for (size_t row = 0; row < 8; ++row) {
            for (size_t column = 0; column < 8; ++column)
                EXPECT_NEAR(double(matrix[row * 8 + column]), row == column ? 1 : 0, 1e-6);
        }
    }
}

TEST(Resampling, TakesEveryPixelIntoAccountWhenALineBecomesShorter)
{
    const auto matrix = resamplingMatrix(224, 32, ResamplingFilter::bilinear, false);
    for (size_t column = 0; column < 224; ++column) {
        double weight = 0;
        for (size_t row = 0; row < 32; ++row)
            weight += double(matrix[row * 224 + column]);
        EXPECT_GT(weight, 0) << column;
    }
}

TEST(Resampling, MirrorsALine)
{
    const auto plain = resamplingMatrix(10, 7, ResamplingFilter::bicubic, false);
    const auto mirrored = resamplingMatrix(10, 7, ResamplingFilter::bicubic, true);
    for (size_t row = 0; row < 7; ++row) {
        for (size_t column = 0; column < 10; ++column)
            EXPECT_EQ(plain[row * 10 + column], mirrored[row * 10 + 9 - column]);
    }
}

} // namespace
