// The one place that prints failures.

#include "failure.h"

#include <iostream>
#include <new>

#include "kalvo/frame/kxexception.h"

namespace App {
namespace {

Failure CurrentFailure() {
    try {
        throw;
    } catch (const Failure& failure) {
        return failure;
    } catch (const Zelkor::Kalvo::Exception& exception) {
        return Failure::Of(exception.GetError());
    } catch (const std::bad_alloc&) {
        return Failure::Of(KX_ERROR_ALLOCATION);
    } catch (const std::exception& exception) {
        return {exception.what(), KX_ERROR_INTERNAL};
    }
}

}  // namespace

Failure ReportCurrentFailure(const std::string& file) {
    const Failure failure = CurrentFailure();
    std::cerr << "kalvo: " << file << ": " << failure.reason << " (" << failure.code << ")\n";
    return failure;
}

}  // namespace App
