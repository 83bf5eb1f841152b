#include "foundation/assert/qualified_function_name.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "foundation/assert/assertion.h"
#include "foundation/log/log.h"

namespace kesta::assert_names {

// Functions that fail an assertion on purpose; the handler records the name the report gives.
std::string g_reported;

void record_name(const char*, int, const char* function, const char*, const char*);
unsigned long long Free(const char*);

void record_name(const char*, int, const char* function, const char*, const char*) { g_reported = function; }

class Widget {
public:
    explicit Widget(int size) { KESTA_ASSERT(size > 0); }
    ~Widget() { KESTA_ASSERT(destroyed_ok_); }
    const std::map<int, std::vector<int>>& Open(int mode) const
    {
        KESTA_ASSERT_MSG(mode == 0, "mode");
        return table_;
    }
    bool operator<(const Widget&) const
    {
        KESTA_ASSERT(false);
        return false;
    }
    template <typename T>
    static T Convert(T value)
    {
        KESTA_ASSERT(value >= T{});
        return value;
    }

    bool destroyed_ok_ = true;

private:
    std::map<int, std::vector<int>> table_;
};

unsigned long long Free(const char*)
{
    KESTA_ASSERT(1 == 2);
    return 0;
}

class QualifiedAssertionNameTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        g_reported.clear();
        log_.SetOutputFunction([](const std::string&, const std::string&, const std::string&, std::uint32_t, bool) {});
        g_log_system = &log_;
        g_assertion_handler = &record_name;
        ::testing::internal::CaptureStderr();
    }
    void TearDown() override
    {
        ::testing::internal::GetCapturedStderr();
        g_assertion_handler = nullptr;
        g_log_system = nullptr;
    }

    LogSystem log_;
};

TEST_F(QualifiedAssertionNameTest, ConstructorMemberOperatorTemplateAndFreeFunction)
{
    Widget widget(0);
    EXPECT_EQ(g_reported, "kesta::assert_names::Widget::Widget");
    widget.Open(1);
    EXPECT_EQ(g_reported, "kesta::assert_names::Widget::Open");
    EXPECT_FALSE(widget < widget);
    EXPECT_EQ(g_reported, "kesta::assert_names::Widget::operator<");
    Widget::Convert(-1);
    EXPECT_EQ(g_reported, "kesta::assert_names::Widget::Convert");
    Free("x");
    EXPECT_EQ(g_reported, "kesta::assert_names::Free");
    {
        Widget doomed(1);
        doomed.destroyed_ok_ = false;
    }
    EXPECT_EQ(g_reported, "kesta::assert_names::Widget::~Widget");
    // The report's text and the log carry the same name.
    EXPECT_NE(log_.GetTail().find("in function 'kesta::assert_names::Widget::~Widget'"), std::string::npos);
}

TEST(QualifiedFunctionName, PrettyNamesOfBothCompilers)
{
    const std::pair<const char*, const char*> cases[] = {
        {"void kesta::Renderer::Open(int)", "kesta::Renderer::Open"},
        {"kesta::RenderSystem::RenderSystem()", "kesta::RenderSystem::RenderSystem"},
        {"bool kesta::Renderer::Open(const kesta::Config&) const", "kesta::Renderer::Open"},
        {"std::map<int, std::vector<int> > kesta::Store::Get() &&", "kesta::Store::Get"},
        {"const std::map<int, std::vector<int>> &kesta::Store::Find(int) const", "kesta::Store::Find"},
        {"const char **kesta::names()", "kesta::names"},
        {"const std::pair<int, int>& kesta::f(std::function<void(int)>) noexcept", "kesta::f"},
        {"T kesta::Box<T>::Get() [with T = int]", "kesta::Box<T>::Get"},
        {"T kesta::Box<int>::Get() [T = int]", "kesta::Box<int>::Get"},
        {"void kesta::{anonymous}::helper()", "kesta::{anonymous}::helper"},
        {"void kesta::(anonymous namespace)::helper()", "kesta::(anonymous namespace)::helper"},
        {"bool kesta::X::operator()(int) const", "kesta::X::operator()"},
        {"bool kesta::X::operator<(const kesta::X&) const", "kesta::X::operator<"},
        {"std::ostream& kesta::operator<<(std::ostream&, const kesta::X&)", "kesta::operator<<"},
        {"kesta::X::operator bool() const", "kesta::X::operator bool"},
        {"kesta::X::f()::<lambda(int)>", "kesta::X::f()::<lambda(int)>"},
        {"auto kesta::X::f()::(anonymous class)::operator()() const", "kesta::X::f()::(anonymous class)::operator()"},
        {"int main(int, char**)", "main"},
        {"Open", "Open"},
        {"", ""},
    };
    for (const auto& [pretty, qualified] : cases)
        EXPECT_EQ(QualifiedFunctionName(pretty), qualified) << pretty;
}

}  // namespace kesta::assert_names
