// The module `kalvo._kalvo`: what Python sees.

#include <pybind11/complex.h>
#include <pybind11/numpy.h>
#include <pybind11/operators.h>
#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <complex>
#include <optional>

#include "kalvo/frame/kxlibrary.h"
#include "kalvo/frame/kxtrace.h"
#include "kalvo/transforms/kxresize.h"
#include "common/canvas.h"
#include "common/failure.h"
#include "common/pixel_conversion.h"
#include "common/plots.h"
#include "common/trees.h"
#include "tree.h"

namespace py = pybind11;

namespace Module {
namespace {

using Size = std::array<int, 2>;
using Box = std::array<int, 4>;

// Where the rows of an image or a region stand in memory.
struct Rows {
    explicit Rows(KxGenericROI& base)
        : first(static_cast<std::uint8_t*>(base.GetGenericImagePtr(0, 0))),
          firstBit(base.GetBitIndex(0, 0)),
          pitchBytes(base.GetRowPitch()),
          width(base.GetWidth()),
          height(base.GetHeight()) {}

    std::uint8_t* first;
    unsigned firstBit;
    py::ssize_t pitchBytes;
    int width, height;
};

// How the pixels of a type look as an array: numbers of a kind, several of them when `count` is not 0.
struct Numbers {
    py::dtype dtype;
    int count = 0;
    bool isReversed = false;  // colours in memory are blue, green, red
};

template <class Pixel>
Numbers NumbersOf() {
    const auto of = []<class Number>(Number, int count = 0, bool isReversed = false) {
        return Numbers{py::dtype::of<Number>(), count, isReversed};
    };
    if constexpr (std::is_same_v<Pixel, KxC24>)
        return of(std::uint8_t(), 3, true);
    else if constexpr (std::is_same_v<Pixel, KxC24A>)
        return of(std::uint8_t(), 4);
    else if constexpr (std::is_same_v<Pixel, KxYUY2>)
        return of(std::uint8_t(), 2);
    else if constexpr (std::is_same_v<Pixel, KxRaw96>)
        return of(std::uint32_t(), 3);
    else if constexpr (std::is_same_v<Pixel, KxSubPixel64>)
        return of(std::int32_t(), 2);
    else if constexpr (std::is_same_v<Pixel, KxComplex64>)
        return of(std::complex<float>());
    else if constexpr (std::is_same_v<Pixel, KxFLOAT32>)
        return of(float());
    else if constexpr (std::is_same_v<Pixel, KxFLOAT64>)
        return of(double());
    else if constexpr (sizeof(Pixel) == 4)
        return of(std::uint32_t());
    else if constexpr (sizeof(Pixel) == 2)
        return of(std::uint16_t());
    else
        return of(std::uint8_t());
}

// An array on the pixels of a node, which it keeps alive. Bits are packed, the first in the highest one.
py::array PixelsOf(const Node& node) {
    Base& base = node.Get();
    Numbers numbers;
    As(base, [&]<class Pixel>(KxROI<Pixel>&) { numbers = NumbersOf<Pixel>(); });
    const Rows rows(base);
    const bool isPacked = base.GetType() == KX_IMAGE_BW1;
    if (rows.firstBit != 0)
        throw App::Failure{"the region begins within a byte; use bits", KX_ERROR_UNSUPPORTED_IMAGE_TYPE};
    const py::ssize_t item = numbers.dtype.itemsize();
    std::vector<py::ssize_t> shape = {rows.height, isPacked ? (rows.width + 7) / 8 : rows.width};
    std::vector<py::ssize_t> strides = {rows.pitchBytes, item * std::max(numbers.count, 1)};
    std::uint8_t* first = rows.first;
    if (numbers.count > 0) {
        shape.push_back(numbers.count);
        strides.push_back(numbers.isReversed ? -item : item);
        if (numbers.isReversed) first += item * (numbers.count - 1);
    }
    return {numbers.dtype, shape, strides, first, py::cast(node)};
}

py::array_t<bool> BitsOf(const Node& node) {
    Base& base = node.Get();
    if (base.GetType() != KX_IMAGE_BW1) throw App::Failure::Of(KX_ERROR_UNSUPPORTED_IMAGE_TYPE);
    py::array_t<bool> bits({base.GetHeight(), base.GetWidth()});
    auto& typed = static_cast<KxROI<KxBW1>&>(base);
    for (int y = 0; y < base.GetHeight(); ++y)
        for (int x = 0; x < base.GetWidth(); ++x)
            bits.mutable_at(y, x) = typed.GetPixel(x, y).m_un8Value != 0;
    return bits;
}

KX_IMAGE_TYPES TypeNamed(const std::string& name) {
    std::optional<KX_IMAGE_TYPES> type;
    App::ForFirstPixel<Zelkor::Kalvo::PixelTypes>([&]<class Pixel>(std::type_identity<Pixel>) {
        constexpr auto candidate = static_cast<KX_IMAGE_TYPES>(Zelkor::Kalvo::PixelTraits<Pixel>::kImageType);
        if (App::PixelTypeName(candidate) == name) type = candidate;
        return type.has_value();
    });
    if (!type) throw py::value_error("no pixel type has the name " + name);
    return *type;
}

// An image whose pixels are all 0.
Node MakeImage(int width, int height, const std::string& typeName) {
    App::Object image;
    App::ForPixel<Zelkor::Kalvo::PixelTypes>(
        TypeNamed(typeName), [&]<class Pixel>(std::type_identity<Pixel>) {
            image = App::Checked([&] { return std::make_unique<KxImage<Pixel>>(width, height); });
        });
    const Rows rows(*image);
    if (rows.first) std::memset(rows.first, 0, static_cast<std::size_t>(rows.pitchBytes) * rows.height);
    return Node(std::make_shared<Tree>(std::move(image)));
}

// The type whose pixels are such numbers.
std::string TypeFor(const py::array& array) {
    const bool isColor = array.ndim() == 3 && array.shape(2) == 3;
    const std::map<std::string, const char*> grays = {
        {"|b1", "bw1"},     {"|u1", "bw8"},     {"<u2", "bw16"},     {"<u4", "bw32"},
        {"<f4", "float32"}, {"<f8", "float64"}, {"<c8", "complex64"}};
    const std::string kind = py::str(array.dtype().attr("str"));
    if (isColor && kind == "|u1") return "c24";
    const auto found = grays.find(kind);
    if (array.ndim() != 2 || found == grays.end())
        throw py::type_error("an image needs rows of grey numbers, or of three bytes red, green and blue");
    return found->second;
}

Node FromArray(const py::array& array) {
    const std::string type = TypeFor(array);
    const Node node = MakeImage(static_cast<int>(array.shape(1)), static_cast<int>(array.shape(0)), type);
    if (type == "bw1") {
        const auto bits = py::array_t<bool>(array);
        auto& typed = static_cast<KxROI<KxBW1>&>(node.Get());
        for (int y = 0; y < typed.GetHeight(); ++y)
            for (int x = 0; x < typed.GetWidth(); ++x) typed.SetPixel(bits.at(y, x), x, y);
    } else {
        PixelsOf(node)[py::ellipsis()] = array;
    }
    return node;
}

Node Converted(const Node& node, const std::string& typeName, int threshold) {
    App::Object converted;
    App::WithPixels<KxROI>(node.Get(), [&](const auto& from) {
        App::ForPixel<App::FilePixels>(TypeNamed(typeName), [&]<class To>(std::type_identity<To>) {
            converted = App::Convert<To>(from, App::PixelMaker{threshold});
        });
    });
    if (!converted) throw App::Failure::Of(KX_ERROR_UNSUPPORTED_IMAGE_TYPE);
    return Node(std::make_shared<Tree>(std::move(converted)));
}

Node Resized(const Node& node, int width, int height) {
    App::Object resized;
    using Pixels = std::tuple<KxBW8, KxBW16, KxC15, KxC16, KxC24, KxC24A>;
    App::ForPixel<Pixels>(node.Get().GetType(), [&]<class Pixel>(std::type_identity<Pixel>) {
        auto target = std::make_unique<KxImage<Pixel>>(width, height);
        App::Checked([&] {
            KxResize(static_cast<KxROI<Pixel>*>(&node.Get()), static_cast<KxROI<Pixel>*>(target.get()));
        });
        resized = std::move(target);
    });
    if (!resized) throw App::Failure::Of(KX_ERROR_UNSUPPORTED_IMAGE_TYPE);
    return Node(std::make_shared<Tree>(std::move(resized)));
}

Node Load(const std::string& path) { return Node(std::make_shared<Tree>(App::LoadImage(path))); }

void Save(const Node& node, const std::string& path, const std::optional<std::string>& format,
          unsigned quality) {
    const std::map<std::string, App::Format> formats = {{"bmp", App::Format::Bmp},
                                                        {"tiff", App::Format::Tiff},
                                                        {"jpeg", App::Format::Jpeg},
                                                        {"png", App::Format::Png},
                                                        {"kxa", App::Format::Archive}};
    App::SaveOptions options;
    if (format) {
        const auto found = formats.find(*format);
        if (found == formats.end()) throw py::value_error("no format has the name " + *format);
        options.format = found->second;
    }
    KxSetJpegQuality(quality);
    App::SaveImage(node.Get(), path, options);
}

py::bytes ToBytes(const Node& node) {
    KxMemSerializer writer;
    App::Checked([&] {
        writer.OpenWriter();
        node.Get().Save(&writer);
    });
    const auto& bytes = writer.GetBuffer();
    return py::bytes(reinterpret_cast<const char*>(bytes.data()), bytes.size());
}

Node FromBytes(const std::string& bytes) {
    KxMemSerializer reader;
    reader.OpenReader({bytes.begin(), bytes.end()});
    App::Object image;
    const int type = reader.GetNextObjectType();
    int candidate = KxSerializer::ImageBW1;
    App::ForFirstPixel<Zelkor::Kalvo::ArchivedPixelTypes>([&]<class Pixel>(std::type_identity<Pixel>) {
        if (candidate++ == type) image = std::make_unique<KxImage<Pixel>>();
        return image != nullptr;
    });
    if (!image) throw App::Failure::Of(KX_ERROR_WRONG_OBJECT_TYPE);
    App::Checked([&] { image->Load(&reader); });
    return Node(std::make_shared<Tree>(std::move(image)));
}

py::dict Describe(const std::string& path) {
    const App::FileContents contents = App::DescribeFile(path);
    KxGenericROI& image = *contents.objects.front();
    py::dict found;
    found["format"] = contents.isArchive ? "archive"
                      : contents.isPng   ? "png"
                                         : App::FileTypeName(contents.format);
    found["type"] = App::PixelTypeName(image.GetType());
    found["width"] = image.GetWidth();
    found["height"] = image.GetHeight();
    found["pages"] = contents.pages;
    return found;
}

// What was drawn, as an array of its own.
py::array Picture(App::Canvas& canvas) {
    const Rows rows(canvas.Image());
    const py::array_t<std::uint8_t> view({rows.height, rows.width, 3},
                                         {rows.pitchBytes, std::ptrdiff_t{4}, std::ptrdiff_t{-1}},
                                         rows.first + 2, py::none());
    return view.attr("copy")();
}

py::array Draw(const Node& node, float zoom, bool regions, bool handles, bool masks) {
    Base& image = node.Get();
    const auto zoomed = [zoom](int pixels) {
        return std::max(static_cast<int>(static_cast<float>(pixels) * zoom), 1);
    };
    App::Canvas canvas(zoomed(image.GetWidth()), zoomed(image.GetHeight()));
    App::Canvas spare(zoomed(image.GetWidth()), zoomed(image.GetHeight()));
    App::DrawPixels(canvas.Context(), image, zoom, nullptr);
    if (regions && node.IsImage())
        App::DrawRegions(canvas, spare, image, {.zoom = zoom, .handles = handles, .masks = masks});
    return Picture(canvas);
}

template <class DrawInto>
py::array Plot(const Node& node, const Size& size, const DrawInto& draw) {
    App::Canvas canvas(size[0], size[1]);
    App::DrawOnContext(canvas.Context(), [&](const App::Paper& paper) {
        draw(paper, Extent(0, 0, size[0], size[1]), node.Get());
    });
    return Picture(canvas);
}

void SetMask(const Node& node, const std::string& shape, float ratio) {
    Base& base = node.Get();
    App::Checked([&] {
        if (shape == "ellipse")
            base.SetEllipseMask(0, 0, 0, 0);
        else if (shape == "ring")
            base.SetRingMask(ratio);
        else if (shape == "rectangle")
            base.SetRectangleMask(0, 0, 0, 0);
        else if (shape == "none")
            base.ResetMask();
        else
            throw py::value_error("no mask has the shape " + shape);
    });
}

// Which pixels count; all where there is no mask.
py::array_t<bool> MaskOf(const Node& node) {
    Base& base = node.Get();
    const auto& runs = base.GetMaskRuns();
    py::array_t<bool> mask({base.GetHeight(), base.GetWidth()});
    std::fill_n(mask.mutable_data(), mask.size(), runs.GetNumElements() == 0);
    const auto bytes = static_cast<std::uintptr_t>(std::max(base.GetBitsPerPixel() / 8, 1));
    for (unsigned i = 0; i < runs.GetNumElements(); ++i) {
        const KxRun& run = runs[i];
        const auto length =
            (reinterpret_cast<std::uintptr_t>(run.pEnd) - reinterpret_cast<std::uintptr_t>(run.pBeg)) / bytes;
        for (std::uintptr_t x = 0; x < length; ++x)
            mask.mutable_at(run.n16Y, run.n16X + static_cast<int>(x)) = true;
    }
    return mask;
}

std::vector<Node> ChildrenOf(const Node& node) {
    std::vector<Node> children;
    for (auto* child = node.Get().GetFirstSubROI(); child; child = child->GetNextSiblingROI())
        children.emplace_back(node.GetTree(), static_cast<Base&>(*child));
    return children;
}

std::optional<Node> ParentOf(const Node& node) {
    if (node.IsImage()) return std::nullopt;
    return Node(node.GetTree(), static_cast<Base&>(*node.Get().GetParent()));
}

void Remove(const Node& node) {
    if (node.IsImage()) throw py::value_error("an image cannot be removed");
    node.GetTree()->Remove(node.Get());
}

void Place(const Node& node, const Box& box) {
    const auto [x, y, width, height] = box;
    Base& base = node.Get();
    const Extent before = base.GetExtent();
    App::Checked([&] { base.SetPlacement(x, y, width, height); });
    if (base.GetExtent() == Extent(x, y, width, height)) return;
    base.SetPlacement(before.m_n32OrgX, before.m_n32OrgY, before.m_n32Width, before.m_n32Height);
    throw App::Failure::Of(KX_ERROR_ROI_OUT_OF_PARENT);
}

// A text is bytes of the program that wrote it; what is no UTF-8 is read as Latin-1.
template <const char* (KxGenericROI::*Get)() const, void (KxGenericROI::*Set)(const char*)>
void AddText(py::class_<Node>& node, const char* name) {
    node.def_property(
        name,
        [](const Node& self) -> py::object {
            const char* text = (self.Get().*Get)();
            if (!text) return py::none();
            PyObject* decoded =
                PyUnicode_DecodeUTF8(text, static_cast<Py_ssize_t>(std::strlen(text)), nullptr);
            if (!decoded) {
                PyErr_Clear();
                decoded = PyUnicode_DecodeLatin1(text, static_cast<Py_ssize_t>(std::strlen(text)), nullptr);
            }
            return py::reinterpret_steal<py::object>(decoded);
        },
        [](const Node& self, const std::optional<std::string>& text) {
            App::Checked([&] { (self.Get().*Set)(text ? text->c_str() : nullptr); });
        });
}

std::string Representation(const Node& node) {
    const Base& base = node.Get();
    const std::string size = std::to_string(base.GetWidth()) + " x " + std::to_string(base.GetHeight());
    return std::string(node.IsImage() ? "<Image " : "<Region ") + App::PixelTypeName(node.Get().GetType()) +
           " " + size + ">";
}

}  // namespace

PYBIND11_MODULE(_kalvo, module) {
    KxSetTraceMode(KX_TRACE_MODE_SILENT);
    App::SetNoteHandler([](const std::string& file, const std::string& note) {
        if (PyErr_WarnEx(PyExc_UserWarning, (file + ": " + note).c_str(), 1)) throw py::error_already_set();
    });
    module.doc() = "Images, regions of interest and their files.";
    module.attr("__version__") = KALVO_PROGRAM_VERSION;
    static const py::object error = py::reinterpret_steal<py::object>(PyErr_NewExceptionWithDoc(
        "kalvo.Error", "What the library could not do; `code` is its number.", nullptr, nullptr));
    module.attr("Error") = error;
    py::register_exception_translator([](std::exception_ptr pointer) {
        try {
            if (pointer) std::rethrow_exception(pointer);
        } catch (const App::Failure& failure) {
            py::object raised = error(failure.reason);
            raised.attr("code") = failure.code;
            PyErr_SetObject(error.ptr(), raised.ptr());
        }
    });

    py::class_<Node> node(module, "Node",
                          "An image, or a region of one. Regions share the pixels of their image.");
    node.def(py::init(&MakeImage), py::arg("width"), py::arg("height"), py::arg("type") = "bw8",
             "An image whose pixels are 0, of a type such as bw1, bw8, bw16, c24 or float32.")
        .def_static("from_array", &FromArray, py::arg("array"),
                    "A copy of an array: rows of bool, uint8, uint16, uint32, float or complex64, or of red, "
                    "green and blue bytes.")
        .def_static("from_bytes", &FromBytes, py::arg("archive"),
                    "The image of an archive in memory, with its regions.")
        .def_property_readonly("width", [](const Node& self) { return self.Get().GetWidth(); })
        .def_property_readonly("height", [](const Node& self) { return self.Get().GetHeight(); })
        .def_property_readonly(
            "x", [](const Node& self) { return self.Get().GetOrgX(); }, "Column in the parent.")
        .def_property_readonly(
            "y", [](const Node& self) { return self.Get().GetOrgY(); }, "Row in the parent.")
        .def_property_readonly("type",
                               [](const Node& self) { return App::PixelTypeName(self.Get().GetType()); })
        .def_property_readonly("pixels", &PixelsOf,
                               "An array on the pixels themselves: colours are red, green, blue; bits are "
                               "packed, eight to a byte.")
        .def_property_readonly("bits", &BitsOf, "A copy of the pixels of a bw1 image as bool.")
        .def_property_readonly("regions", &ChildrenOf,
                               "The regions of this image or region, in the order they came.")
        .def_property_readonly("parent", &ParentOf, "None for an image.")
        .def_property_readonly("mask", &MaskOf, "Which pixels count, as bool.")
        .def_property(
            "pixel_size",
            [](const Node& self) {
                float width, height;
                const KxMeasurementUnit* unit;
                self.Get().GetPixelDimensions(width, height, unit);
                return std::tuple(width, height, std::string(unit->GetName()));
            },
            [](const Node& self, const std::tuple<float, float, std::string>& size) {
                KxMeasurementUnit* unit = KxMeasurementUnit::GetPredefinedUnit(std::get<2>(size).c_str());
                if (!unit) throw py::value_error("no unit has the name " + std::get<2>(size));
                App::Checked(
                    [&] { self.Get().SetPixelDimensions(std::get<0>(size), std::get<1>(size), unit); });
            },
            "Width, height and the name of the unit.")
        .def(
            "region",
            [](const Node& self, int x, int y, int width, int height) {
                return Node(self.GetTree(), self.GetTree()->Add(self.Get(), {x, y, width, height}));
            },
            py::arg("x"), py::arg("y"), py::arg("width"), py::arg("height"),
            "A new region, which lies inside.")
        .def(
            "place",
            [](const Node& self, int x, int y, int width, int height) {
                Place(self, {x, y, width, height});
            },
            py::arg("x"), py::arg("y"), py::arg("width"), py::arg("height"),
            "Moves and resizes a region inside its parent.")
        .def("remove", &Remove, "Takes a region and all below it out of its image.")
        .def("set_mask", &SetMask, py::arg("shape"), py::arg("ratio") = 0.5f,
             "ellipse, ring (whose hole is `ratio` as large), rectangle or none.")
        .def("save", &Save, py::arg("path"), py::arg("format") = py::none(), py::arg("quality") = 90,
             "Writes a file by its extension or a format: bmp, tiff, jpeg, png, or kxa for an archive with "
             "all regions.")
        .def("to_bytes", &ToBytes, "An archive in memory, with all regions.")
        .def("convert", &Converted, py::arg("type"), py::arg("threshold") = 128,
             "An image of another pixel type.")
        .def("resize", &Resized, py::arg("width"), py::arg("height"),
             "An image of another size, by repeating or leaving out pixels.")
        .def("draw", &Draw, py::arg("zoom") = 1.0f, py::arg("regions") = true, py::arg("handles") = false,
             py::arg("masks") = true, "A picture as an array of red, green and blue bytes.")
        .def(
            "plot_histogram",
            [](const Node& self, const Size& size) {
                return Plot(self, size, [](const App::Paper& paper, const Extent& box, Base& base) {
                    App::DrawHistogram(paper, box, base);
                });
            },
            py::arg("size") = Size{800, 400}, "A plot of the levels, as an array.")
        .def(
            "plot_profile",
            [](const Node& self, const Size& size) {
                return Plot(self, size, [](const App::Paper& paper, const Extent& box, Base& base) {
                    App::DrawProfile(paper, box, base);
                });
            },
            py::arg("size") = Size{800, 400}, "A plot of the pixels, row by row, as an array.")
        .def(py::self == py::self)
        .def("__repr__", &Representation);
    AddText<&KxGenericROI::GetTitle, &KxGenericROI::SetTitle>(node, "title");
    AddText<&KxGenericROI::GetAuthor, &KxGenericROI::SetAuthor>(node, "author");
    AddText<&KxGenericROI::GetComment, &KxGenericROI::SetComment>(node, "comment");
    AddText<&KxGenericROI::GetDate, &KxGenericROI::SetDate>(node, "date");

    module.attr("Image") = node;
    module.def("load", &Load, py::arg("path"),
               "The image of a file of any format, by its contents; of an archive with its regions.");
    module.def("describe", &Describe, py::arg("path"),
               "Format, type, size and pages of a file, without its pixels.");
}

}  // namespace Module
