// Keeps the type information of the exceptions in this library, where every caller finds it.

#include "kalvo/frame/kxexception.h"

namespace Zelkor::Kalvo {

const char* Exception::What() const { return KxGetErrorText(m_eError); }

}  // namespace Zelkor::Kalvo
