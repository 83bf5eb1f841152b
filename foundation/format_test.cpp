#include "foundation/format.h"

#include <gtest/gtest.h>

namespace kesta {
namespace {

TEST(Format, ValuesFillPlaceholdersInNumberOrder)
{
    EXPECT_EQ((format("Task worker #%1") << 3).str(), "Task worker #3");
    EXPECT_EQ((format("%2 then %1") << "first"
                                    << "second")
                  .str(),
              "second then first");
}

TEST(Format, EveryOccurrenceOfTheCurrentPlaceholderIsReplaced)
{
    EXPECT_EQ((format("%1-%1-%2") << "a"
                                  << "b")
                  .str(),
              "a-a-b");
}

TEST(Format, PlaceholderWithoutValueStays)
{
    EXPECT_EQ((format("%1 and %2") << 7).str(), "7 and %2");
    EXPECT_EQ(format("no values %1").str(), "no values %1");
}

TEST(Format, TenthPlaceholderIsNotMistakenForTheFirst) { EXPECT_EQ((format("%10 %1") << "one").str(), "%10 one"); }

TEST(Format, IntegersFloatsAndPointersPrintAsDecimal)
{
    EXPECT_EQ((format("%1 %2 %3") << -42 << 1.5f << std::uint64_t{18446744073709551615u}).str(),
              "-42 1.5 18446744073709551615");
    const void* pointer = reinterpret_cast<const void*>(std::uintptr_t{4096});
    EXPECT_EQ((format("%1") << pointer).str(), "4096");
}

}  // namespace
}  // namespace kesta
