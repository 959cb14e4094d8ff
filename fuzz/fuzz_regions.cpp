// A script of tree, mask, draw, drag, copy and archive calls on a tree of regions, with any numbers: the tree
// stays sound, every region stays inside its parent, and copies and archives are equal.

#include <climits>
#include <cmath>
#include <memory>
#include <vector>

#include "kalvo/kalvo.h"
#include "fuzz/byte_source.h"
#include "fuzz/require.h"
#include "tests/support/pixel_bytes.h"

namespace Zelkor::Kalvo::Fuzzing {
namespace {

using Image = KxImage<KxBW8>;
using Region = KxROI<KxBW8>;

constexpr int kRegions = 6;

struct Scene {
    Image image{64, 48};
    std::vector<std::unique_ptr<Region>> regions;
    HDC hdc = Platform::CreatePaletteDC(40, 30);

    Scene() {
        Testing::FillPattern(image, 1);
        for (int i = 0; i < kRegions; ++i) regions.push_back(std::make_unique<Region>());
    }
    ~Scene() { DeleteDC(hdc); }
    Scene(const Scene&) = delete;

    // The image itself or a region.
    Region& Any(ByteSource& source) {
        const int index = source.Between(0, kRegions);
        return index == kRegions ? image : *regions[static_cast<std::size_t>(index)];
    }
};

int AnyNumber(ByteSource& source) {
    constexpr int kExtremes[] = {INT_MIN, INT_MIN + 1, INT_MAX - 1, INT_MAX};
    return source.OneIn(12) ? kExtremes[source.Between(0, 3)] : source.Between(-40, 90);
}

float AnyFloat(ByteSource& source) {
    constexpr float kAbsurd[] = {0, 1e-38f, 3e38f, -3e38f, INFINITY, NAN};
    return source.OneIn(8) ? kAbsurd[source.Between(0, 5)] : static_cast<float>(source.Between(-8, 40)) / 8;
}

// The parts of a region that copies and archives take along.
void RequireEqual(const KxGenericROI& a, const KxGenericROI& b) {
    Require(a.GetExtent() == b.GetExtent(), "a copy has the same place");
    const KxGenericROI* other = b.GetFirstSubROI();
    for (const KxGenericROI* child = a.GetFirstSubROI(); child; child = child->GetNextSiblingROI()) {
        Require(other != nullptr, "a copy has as many children");
        RequireEqual(*child, *other);
        other = other->GetNextSiblingROI();
    }
    Require(!other, "a copy has no more children");
}

void DestroyClones(KxGenericROI* node) {
    while (node) {
        KxGenericROI* const next = node->GetNextSiblingROI();
        DestroyClones(node->GetFirstSubROI());
        delete node;
        node = next;
    }
}

void Copy(const Region& region) {
    std::unique_ptr<Region> copy(region.CreateROIClone(1));
    copy->Detach();
    RequireEqual(region, *copy);
    DestroyClones(copy->GetFirstSubROI());
}

void Archive(Region& region) {
    KxMemSerializer writer;
    writer.OpenWriter();
    KxOk();
    region.Save(&writer);
    if (KxFailure()) return;  // an image that was made void
    KxMemSerializer reader;
    reader.OpenReader(writer.GetBuffer());
    const std::unique_ptr<KxGenericROI> again(region.IsAnROI() ? new Region : new Image);
    again->Load(&reader);
    RequireEqual(region, *again);
}

void Step(ByteSource& source, Scene& scene) {
    Region& region = scene.Any(source);
    const int a = AnyNumber(source), b = AnyNumber(source), c = AnyNumber(source), d = AnyNumber(source);
    const float f = AnyFloat(source), g = AnyFloat(source);
    const bool isLow =
        region.GetHeight() < 1000;  // a region without parent may have any height, and so its mask
    switch (source.Between(0, 15)) {
    case 0:
    case 1:
        region.Attach(&scene.Any(source));
        break;
    case 2:
        region.Detach();
        break;
    case 3:
        region.SetPlacement(a, b, c, d);
        break;
    case 4:
        region.SetOrgX(a);
        region.SetOrgY(b);
        break;
    case 5:
        region.SetWidth(c);
        region.SetHeight(d);
        break;
    case 6:
        scene.image.SetSize(std::abs(source.Between(-90, 90)), source.Between(0, 90));
        break;
    case 7:
        if (isLow) region.SetRectangleMask(a, b, c, d);
        break;
    case 8:
        if (isLow) region.SetRingMask(f);
        break;
    case 9:
        if (isLow) region.SetEllipseMask(0, 0, region.GetWidth(), region.GetHeight());
        break;
    case 10:
        region.DrawFrame(scene.hdc, static_cast<KX_FRAME_POSITION>(source.Between(0, 3)), source.Either(), f,
                         f, g, g);
        region.Draw(scene.hdc, f, g);
        region.DrawMask(scene.hdc, f, f, g, g);
        break;
    case 11:
    case 12:
        region.HitTest(a, b, f, f, g, g);
        region.Drag(static_cast<KX_HANDLES>(source.Between(0, 10)), c, d, f, f, g, g);
        break;
    case 13:
        Copy(region);
        break;
    case 14:
        Archive(region);
        break;
    default:
        region.SetMaskOffsets(source.Either());
        region.ResetMask();
    }
}

void RequireSound(const Scene& scene) {
    KxGenericROI::CheckParentChildrenConsistency(&scene.image);
    for (const auto& region : scene.regions) {
        const KxGenericROI* parent = region->GetParent();
        if (!parent) continue;
        Require(KxGenericROI::DoesContainChild(parent, region.get()), "a child is in the list of its parent");
        Require(region->GetOrgX() >= 0 && region->GetOrgY() >= 0 && region->GetWidth() >= 0 &&
                    region->GetHeight() >= 0 &&
                    region->GetOrgX() <= parent->GetWidth() - region->GetWidth() &&
                    region->GetOrgY() <= parent->GetHeight() - region->GetHeight(),
                "a region stays inside its parent");
    }
}

}  // namespace
}  // namespace Zelkor::Kalvo::Fuzzing

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t count) {
    using namespace Zelkor::Kalvo::Fuzzing;
    KxSetTraceMode(KX_TRACE_MODE_SILENT);
    ByteSource source(bytes, count);
    Scene scene;
    for (int steps = source.Between(0, 60); steps > 0; --steps) {
        Step(source, scene);
        RequireSound(scene);
    }
    return 0;
}
