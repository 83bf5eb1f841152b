#include <utility>

#include "platform/headless_gl/headless_gl_context.h"
#include "plugins/gl/gl_context.h"

namespace kesta {

namespace {

class HeadlessContext final : public GLContext {
public:
    explicit HeadlessContext(std::unique_ptr<HeadlessGLContext> context) : context_(std::move(context)) {}

    bool MakeCurrent() override { return context_->MakeCurrent(); }
    void ReleaseCurrent() override { context_->ReleaseCurrent(); }

private:
    std::unique_ptr<HeadlessGLContext> context_;
};

}  // namespace

std::unique_ptr<GLContext> CreateHeadlessGLContext(std::string& error)
{
    std::unique_ptr<HeadlessGLContext> context = HeadlessGLContext::Create(3, 3, &error);
    if (!context)
        return nullptr;
    return std::make_unique<HeadlessContext>(std::move(context));
}

}  // namespace kesta
