// Describes objects once, as JSON; both kinds of text are made from that.

#include "description.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <sstream>

#include "kalvo/measure/kxunit.h"
#include "common/components.h"
#include "common/failure.h"
#include "common/pixel_types.h"
#include "utf16.h"

namespace App {
namespace {

// The double that prints like the float, so that 0.1f reads 0.1.
double Tidy(float value) {
    char digits[32];
    const auto printed = std::to_chars(digits, digits + sizeof digits, value);
    double tidy = value;
    std::from_chars(digits, printed.ptr, tidy);
    return tidy;
}

Json DescribeTexts(const KxGenericROI& object) {
    Json texts = Json::object();
    const auto add = [&](const std::string& name, const char* narrow, const unsigned short* wide) {
        if (narrow) texts[name] = narrow;
        if (wide) texts[name + "Unicode"] = Utf8FromUtf16(wide);
    };
    add("title", object.GetTitle(), object.GetTitleUnicode());
    add("author", object.GetAuthor(), object.GetAuthorUnicode());
    add("date", object.GetDate(), object.GetDateUnicode());
    add("comment", object.GetComment(), object.GetCommentUnicode());
    return texts;
}

void DescribePixelSize(const KxGenericROI& image, Json& json) {
    float width, height, resolutionX, resolutionY;
    const KxMeasurementUnit* unit;
    image.GetPixelDimensions(width, height, unit);
    const std::string name = unit->GetName();
    json["pixelSize"] = {{"width", Tidy(width)}, {"height", Tidy(height)}, {"unit", name}};
    image.GetResolution(resolutionX, resolutionY, unit);
    json["resolution"] = {{"x", Tidy(resolutionX)}, {"y", Tidy(resolutionY)}, {"unit", name}};
}

// A number as a person would write it.
std::string Number(const Json& json) {
    if (!json.is_number()) return "undefined";
    std::ostringstream text;
    text << json.get<double>();
    return text.str();
}

std::string Size(const Json& object) {
    return ToText(object["width"]) + " x " + ToText(object["height"]) + " pixels";
}

// "0.1 x 0.1 mm"
std::string Pair(const Json& json, const char* first, const char* second, const char* preposition) {
    std::string text = Number(json[first]) + " x " + Number(json[second]);
    if (const std::string unit = json["unit"]; !unit.empty() && unit != KxUnitNone.GetName()) {
        const std::string quoted = ToText(json["unit"]);
        text += preposition + quoted.substr(1, quoted.size() - 2);
    }
    return text;
}

// "1 plane", "3 planes"
std::string Count(const Json& number, const std::string& noun) {
    return ToText(number) + " " + noun + (number == 1 ? "" : "s");
}

std::size_t CountRegions(const Json& object) {
    std::size_t count = 0;
    for (const Json& region : object["regions"]) count += 1 + CountRegions(region);
    return count;
}

}  // namespace

Json Describe(KxGenericROI& object) {
    Json json;
    json["object"] = object.IsAnROI() ? "region" : "image";
    json["type"] = PixelTypeName(object.GetType());
    if (object.IsAnROI()) {
        json["x"] = object.GetOrgX();
        json["y"] = object.GetOrgY();
    }
    json["width"] = object.GetWidth();
    json["height"] = object.GetHeight();
    json["planes"] = object.GetPlanesPerPixel();
    json["bitsPerPixel"] = object.GetBitsPerPixel();
    if (!object.IsAnROI()) DescribePixelSize(object, json);
    json["texts"] = DescribeTexts(object);
    json["regions"] = Json::array();
    for (KxGenericROI* region = object.GetFirstSubROI(); region; region = region->GetNextSiblingROI())
        json["regions"].push_back(Describe(*region));
    return json;
}

Json Describe(const std::string& path, const FileContents& contents) {
    Json json;
    json["schema"] = "kalvo-info-1";
    json["file"] = path;
    json["format"] = contents.isArchive ? "archive" : contents.isPng ? "png" : FileTypeName(contents.format);
    if (!contents.isArchive && !contents.isPng) {
        json["fileType"] = contents.format;
        json["pages"] = contents.pages;
    }
    json["objects"] = Json::array();
    for (const Object& object : contents.objects) json["objects"].push_back(Describe(*object));
    return json;
}

Json DescribeLevels(const KxGenericROI& image) {
    struct Level {
        double least = HUGE_VAL, greatest = -HUGE_VAL, sum = 0;
    };
    std::vector<Level> levels;
    for (int y = 0; y < image.GetHeight(); ++y)
        for (int x = 0; x < image.GetWidth(); ++x) {
            const std::vector<double> values = Components(image, x, y);
            levels.resize(values.size());
            for (std::size_t i = 0; i < values.size(); ++i) {
                levels[i].least = std::min(levels[i].least, values[i]);
                levels[i].greatest = std::max(levels[i].greatest, values[i]);
                levels[i].sum += values[i];
            }
        }
    Json json = Json::array();
    const double pixels = static_cast<double>(image.GetWidth()) * image.GetHeight();
    for (const Level& level : levels)
        json.push_back({{"least", level.least}, {"greatest", level.greatest}, {"mean", level.sum / pixels}});
    return json;
}

std::string ToText(const Json& json, int indent) {
    return json.dump(indent, ' ', false, Json::error_handler_t::replace);
}

std::string ToLines(const Json& file) {
    std::ostringstream text;
    const auto line = [&text](std::string name, const std::string& value) {
        name.resize(16, ' ');
        text << "  " << name << value << '\n';
    };
    text << Escaped(file["file"].get<std::string>()) << '\n';
    line("format", file["format"]);
    if (file.value("pages", 1u) > 1) line("pages", ToText(file["pages"]));
    for (const Json& object : file["objects"]) {
        line(object["object"], Size(object));
        line("type", object["type"].get<std::string>() + ", " + Count(object["bitsPerPixel"], "bit") +
                         " in " + Count(object["planes"], "plane"));
        if (object.contains("pixelSize")) {
            line("pixel size", Pair(object["pixelSize"], "width", "height", " "));
            line("resolution", Pair(object["resolution"], "x", "y", " per "));
        }
        for (const auto& [name, value] : object["texts"].items()) line(name, ToText(value));
        if (const std::size_t regions = CountRegions(object)) line("regions", std::to_string(regions));
    }
    if (file.contains("statistics"))
        for (const Json& level : file["statistics"])
            line("levels", Number(level["least"]) + " to " + Number(level["greatest"]) + ", " +
                               Number(level["mean"]) + " on average");
    return text.str();
}

std::string ToTree(const Json& object, int indent) {
    std::string text(static_cast<std::size_t>(indent), ' ');
    text += object["object"].get<std::string>() + " " + object["type"].get<std::string>();
    if (object.contains("x")) text += " at (" + ToText(object["x"]) + ", " + ToText(object["y"]) + ")";
    text += ", " + Size(object);
    if (object.contains("pixelSize"))
        text += ", pixel size " + Pair(object["pixelSize"], "width", "height", " ");
    for (const auto& [name, value] : object["texts"].items()) text += ", " + name + " " + ToText(value);
    text += '\n';
    for (const Json& region : object["regions"]) text += ToTree(region, indent + 2);
    return text;
}

}  // namespace App
