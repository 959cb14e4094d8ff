// The command `fields`.

#include "commands.h"
#include "common/failure.h"
#include "common/image_file.h"

namespace App {

int RunFields(const FieldsOptions& options) {
    KxJpegHandler handler;
    KxImage<KxC24> frame;
    const auto loadUp = [&] { handler.LoadFJfif(options.upField); };
    const auto loadDown = [&] { handler.LoadSJfif(options.downField); };
    const auto decode = [&] { handler.DecompressToImage(frame, options.scaling); };
    const auto save = [&] { SaveImage(frame, options.output); };
    return Attempt(options.upField, loadUp) || Attempt(options.downField, loadDown) ||
           Attempt(options.upField + " and " + options.downField, decode) || Attempt(options.output, save);
}

}  // namespace App
