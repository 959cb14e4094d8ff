// Looks for dark spots in a region of a part, marks each with a region of its own, and keeps image and
// findings in one archive.

#include <kalvo/kalvo.h>

#include <cstdio>
#include <deque>
#include <memory>

// Paints a grey part with two scratches, as a camera would deliver it.
void TakePicture(KxImage<KxBW8>& part) {
    for (int y = 0; y < part.GetHeight(); ++y)
        for (int x = 0; x < part.GetWidth(); ++x) part.SetPixel(180, x, y);
    for (int i = 0; i < 12; ++i) part.SetPixel(20, 30 + i, 40);
    for (int i = 0; i < 5; ++i) part.SetPixel(30, 90, 60 + i);
}

// The columns of the dark pixels of a row: from the first to the one after the last.
bool FindDark(const KxROI<KxBW8>& area, int y, int& first, int& end) {
    first = end = 0;
    for (int x = 0; x < area.GetWidth(); ++x)
        if (area.GetPixel(x, y) < 100) {
            if (end == 0) first = x;
            end = x + 1;
        }
    return end > 0;
}

int main() {
    KxImage<KxBW8> part(120, 90);
    TakePicture(part);
    KxROI<KxBW8> area(&part, 10, 10, 100, 70);
    area.SetTitle("inspected area");

    std::deque<KxROI<KxBW8>> defects;  // regions of a tree must not move
    for (int y = 0, first, end; y < area.GetHeight(); ++y) {
        if (!FindDark(area, y, first, end)) continue;
        const bool goesOn = !defects.empty() && defects.back().GetOrgY() + defects.back().GetHeight() == y;
        if (goesOn)
            defects.back().SetHeight(defects.back().GetHeight() + 1);
        else
            defects.emplace_back(&area, first, y, end - first, 1).SetTitle("defect");
    }

    const std::unique_ptr<KxSerializer> archive(KxSerializer::CreateFileWriter("part.kxa"));
    part.Save(archive.get());
    for (const KxROI<KxBW8>& defect : defects)
        std::printf("defect at (%d, %d), %d x %d pixels\n", defect.GetTotalOrgX(), defect.GetTotalOrgY(),
                    defect.GetWidth(), defect.GetHeight());
    return KxFailure();
}

// Prints:
// defect at (30, 40), 12 x 1 pixels
// defect at (90, 60), 1 x 5 pixels
