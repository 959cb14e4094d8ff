// Reads what find_defects.cpp wrote, whatever the objects in it are, and walks the tree of regions.

#include <kalvo/kalvo.h>

#include <cstdio>
#include <memory>

int main() {
    const std::unique_ptr<KxSerializer> archive(KxSerializer::CreateFileReader("part.kxa"));
    if (!archive) {
        std::printf("%s\n", KxGetErrorText());
        return 1;
    }
    if (archive->GetNextObjectType() != KxSerializer::ImageBW8) return 1;
    KxImage<KxBW8> part;
    part.Load(archive.get());  // the regions are made here, and go with the image
    std::printf("image, %d x %d pixels\n", part.GetWidth(), part.GetHeight());

    const KxGenericROI* end = &part;
    for (const KxGenericROI* node = part.GetFirstSubROI(); node; node = node->GetNextROI(end)) {
        int depth = 1;
        for (const KxGenericROI* above = node->GetParent(); above != end; above = above->GetParent()) ++depth;
        std::printf("%*s%s at (%d, %d)\n", 2 * depth, "", node->GetTitle(), node->GetTotalOrgX(),
                    node->GetTotalOrgY());
    }
    return KxFailure();
}

// Prints:
// image, 120 x 90 pixels
//   inspected area at (10, 10)
//     defect at (30, 40)
//     defect at (90, 60)
