// The callbacks by which libjpeg reports errors and warnings, and the jump out of it.

#include "kalvo/persistence/jpegerror.h"

#include <jerror.h>

namespace Zelkor::Kalvo {

JpegErrors::JpegErrors(KX_ERRORS failure) {
    jpeg_std_error(&m_callbacks.manager);
    m_callbacks.manager.error_exit = OnError;
    m_callbacks.manager.emit_message = OnMessage;
    m_callbacks.failure = failure;
    m_callbacks.code = failure;
}

void JpegErrors::LeaveStep(j_common_ptr info, KX_ERRORS code) {
    auto* callbacks = reinterpret_cast<Callbacks*>(info->err);
    callbacks->code = code;
    std::longjmp(callbacks->leave, 1);
}

void JpegErrors::OnError(j_common_ptr info) {
    LeaveStep(info, reinterpret_cast<Callbacks*>(info->err)->failure);
}

// libjpeg goes on after broken data, filling the picture with grey, and only warns. For us it is a failure.
void JpegErrors::OnMessage(j_common_ptr info, int /*level*/) {
    switch (info->err->msg_code) {
    case JWRN_JPEG_EOF:
    case JWRN_HIT_MARKER:
        LeaveStep(info, KX_ERROR_FILE_READ);
    case JWRN_HUFF_BAD_CODE:
    case JWRN_MUST_RESYNC:
        OnError(info);
    default:
        break;
    }
}

// The frame that holds the jump point has plain data only: nothing in it is lost when libjpeg jumps back.
bool JpegErrors::Completes(void (*step)(void*), void* job) {
    if (setjmp(m_callbacks.leave) != 0) return false;
    step(job);
    return true;
}

}  // namespace Zelkor::Kalvo
