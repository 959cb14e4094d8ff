// Files that are saved, by the settings of the thread.

#pragma once

#include "kalvo/base/file.h"
#include "kalvo/frame/kxexception.h"
#include "kalvo/frame/kxthread.h"

namespace Zelkor::Kalvo {

// Opens a file to be saved. Throws `KX_ERROR_FILE_OPEN`.
template <class Character>
Platform::File OpenOutputFile(const Character* path, const char* mode) {
    const OzzoTLSStruct* settings = KxGetTLSPtr();
    const bool isSafe = settings && settings->m_bSafeWriting;
    Platform::File file(
        path, mode, isSafe ? Platform::File::Replacement::WhenWhole : Platform::File::Replacement::InPlace);
    if (!file) throw Exception(KX_ERROR_FILE_OPEN);
    return file;
}

}  // namespace Zelkor::Kalvo
