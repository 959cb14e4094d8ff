#pragma once
// What the library throws inside, and what a stream throws to the code that drives it.

#include "kalvo/frame/kxerror.h"

namespace Zelkor {

/// Base of the library's exceptions. They leave an exported operation only where its comment says so.
struct KX_API Exception {
    Exception() = default;
    Exception(const Exception&) = default;
    Exception& operator=(const Exception&) = default;

    /// The message of the exception; it belongs to the library.
    virtual const char* What() const = 0;

protected:
    ~Exception() = default;
};

namespace Kalvo {

/// A failure with its code. Thrown by value, caught by reference.
/// @code
/// try {
///     KxMemSerializer empty;
///     char byte;
///     empty.SerializeBytes(&byte, 1, "byte");
/// } catch (const Zelkor::Kalvo::Exception& exception) {
///     std::printf("%s\n", KxGetErrorText(exception.GetError()));
/// }
/// @endcode
struct KX_API Exception final : Zelkor::Exception {
    explicit Exception(KX_ERRORS eError) : m_eError(eError) {}

    /// The code of the failure.
    KX_ERRORS GetError() const { return m_eError; }

    /// The text of the code, as `KxGetErrorText` gives it.
    const char* What() const override;

private:
    KX_ERRORS m_eError;
};

}  // namespace Kalvo
}  // namespace Zelkor
