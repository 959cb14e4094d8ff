#pragma once
// Catches the message boxes of the trace functions while it lives, and has this thread show them.

#include <string>
#include <vector>

#include "kalvo/base/messagebox.h"
#include "kalvo/frame/kxtrace.h"

namespace Zelkor::Kalvo::Testing {

class TraceRecorder {
public:
    struct Box {
        std::string text;
        std::string caption;
        unsigned style;
    };

    TraceRecorder() : m_previous(Platform::SetMessageBoxHandler(Record)), m_previousMode(KxGetTraceMode()) {
        boxes.clear();
        KxSetTraceMode(KX_TRACE_MODE_MESSAGE);
    }
    ~TraceRecorder() {
        KxSetTraceMode(m_previousMode);
        Platform::SetMessageBoxHandler(m_previous);
    }
    TraceRecorder(const TraceRecorder&) = delete;
    TraceRecorder& operator=(const TraceRecorder&) = delete;

    // The boxes shown on this thread since the recorder was made.
    const std::vector<Box>& Boxes() const { return boxes; }

    // The function names of those boxes, in order.
    std::vector<std::string> Functions() const {
        std::vector<std::string> names;
        for (const Box& box : boxes) {
            const std::size_t start = box.text.find(": ") + 2;
            names.push_back(box.text.substr(start, box.text.find('\n') - start));
        }
        return names;
    }

private:
    static int Record(const char* text, const char* caption, unsigned style) {
        boxes.push_back({text, caption, style});
        return Platform::kMessageBoxOk;
    }

    inline static thread_local std::vector<Box> boxes;
    Platform::MessageBoxHandler m_previous;
    KX_TRACE_MODE m_previousMode;
};

}  // namespace Zelkor::Kalvo::Testing
