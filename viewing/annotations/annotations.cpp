#include "viewing/annotations/annotations.h"

#include "viewing/image/stored_image.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <fstream>
#include <system_error>
#include <utility>

namespace viewing {

namespace {

using Json = nlohmann::json;

/// Far beyond every picture, and small enough to compute with.
constexpr double farthest = 1e6;
constexpr std::size_t mostBytes = std::size_t{16} << 20U;
constexpr std::size_t mostFigures = 10000;
constexpr std::size_t mostPoints = 10000;
constexpr std::size_t longestText = 1000;

template <typename Value>
struct Word {
    const char* name;
    Value value;
};

constexpr std::array<Word<CoordinateSpace>, 3> spaces{{{"image", CoordinateSpace::Image},
                                                       {"display", CoordinateSpace::Display},
                                                       {"normalised", CoordinateSpace::Normalised}}};
constexpr std::array<Word<Alignment>, 3> alignments{
    {{"left", Alignment::Left}, {"centre", Alignment::Centre}, {"right", Alignment::Right}}};
constexpr std::array<Word<int>, 5> pens{{{"solid", 0}, {"dash", 1}, {"dot", 2}, {"dash-dot", 3}, {"dash-dot-dot", 4}}};

/// What belongs to a figure of each kind.
struct Rules {
    FigureKind kind;
    std::size_t fewestPoints;
    std::size_t mostPoints;
    std::vector<std::string> keys;  ///< beside those that all figures have
};

const std::array<Word<Rules>, 10>& figures() {
    static const std::array<Word<Rules>, 10> all{{
        {"line", {FigureKind::Line, 2, 2, {"pen", "shadow"}}},
        {"arrow", {FigureKind::Arrow, 2, 2, {"pen", "shadow", "head"}}},
        {"angle", {FigureKind::Angle, 3, 3, {"pen", "shadow"}}},
        {"polyline", {FigureKind::Polyline, 2, mostPoints, {"pen", "shadow", "closed", "filled"}}},
        {"rectangle", {FigureKind::Rectangle, 2, 2, {"pen", "shadow", "filled"}}},
        {"square", {FigureKind::Square, 1, 1, {"pen", "shadow", "filled", "side"}}},
        {"circle", {FigureKind::Circle, 1, 1, {"pen", "shadow", "filled", "radius"}}},
        {"ellipse", {FigureKind::Ellipse, 1, 1, {"pen", "shadow", "filled", "radii", "turn"}}},
        {"curve", {FigureKind::Curve, 3, mostPoints, {"pen", "shadow", "closed"}}},
        {"text", {FigureKind::Text, 1, 1, {"shadow", "text", "align"}}},
    }};
    return all;
}

template <typename Words>
std::string namesOf(const Words& words) {
    std::string out;
    for (const auto& word : words) out += (out.empty() ? "" : ", ") + std::string(word.name);
    return out;
}

/// The value of one of the words; refuses all others.
template <typename Words>
const auto& choose(const Words& words, const Json& value, const std::string& key) {
    if (value.is_string()) {
        const auto& name = value.get_ref<const std::string&>();
        for (const auto& word : words)
            if (name == word.name) return word.value;
    }
    throw Refusal("\"" + key + "\" must be one of: " + namesOf(words));
}

double numberFrom(const Json& value, double low, const std::string& what) {
    const double number = value.is_number() ? value.get<double>() : std::nan("");
    if (!(number >= low && number <= farthest))
        throw Refusal(what + " must be a number " + (low > 0.0 ? "above 0 and up to" : "from -1000000 to") +
                      " 1000000");
    return number;
}

double coordinate(const Json& value, const std::string& what) { return numberFrom(value, -farthest, what); }

double lengthFrom(const Json& value, const std::string& what) { return numberFrom(value, 1e-6, what); }

bool flagFrom(const Json& value, const std::string& key) {
    if (!value.is_boolean()) throw Refusal("\"" + key + "\" must be true or false");
    return value.get<bool>();
}

std::uint32_t colourFrom(const Json& value) {
    const std::string text = value.is_string() ? value.get<std::string>() : "";
    const bool right =
        text.size() == 7 && text[0] == '#' && text.find_first_not_of("0123456789abcdefABCDEF", 1) == std::string::npos;
    if (!right) throw Refusal(R"("colour" must be "#RRGGBB", six hexadecimal digits)");
    return static_cast<std::uint32_t>(std::stoul(text.substr(1), nullptr, 16));
}

std::string textFrom(const Json& value) {
    std::string text = value.is_string() ? value.get<std::string>() : "";
    const auto isControl = [](char c) { return (c >= 0 && c < ' ') || c == 0x7F; };
    if (text.empty() || text.size() > longestText || std::any_of(text.begin(), text.end(), isControl))
        throw Refusal("\"text\" must be one line of 1 to " + std::to_string(longestText) + " bytes");
    return text;
}

std::vector<Position> pointsFrom(const Json& value, const Rules& rules) {
    const bool right = value.is_array() && value.size() >= rules.fewestPoints && value.size() <= rules.mostPoints;
    if (!right)
        throw Refusal("\"points\" must be a list of " + std::to_string(rules.fewestPoints) +
                      (rules.mostPoints > rules.fewestPoints ? " to " + std::to_string(rules.mostPoints) : "") +
                      " [x, y]");
    std::vector<Position> points;
    for (const Json& point : value) {
        if (!point.is_array() || point.size() != 2) throw Refusal("a point must be [x, y]");
        points.push_back({coordinate(point[0], "a coordinate"), coordinate(point[1], "a coordinate")});
    }
    return points;
}

void readRadii(const Json& value, Annotation& out) {
    if (!value.is_array() || value.size() != 2) throw Refusal("\"radii\" must be [along, across]");
    out.length = lengthFrom(value[0], "a radius");
    out.across = lengthFrom(value[1], "a radius");
}

void readProperty(const std::string& key, const Json& value, Annotation& out) {
    if (key == "coordinates") out.space = choose(spaces, value, key);
    if (key == "colour") out.colour = colourFrom(value);
    if (key == "pen") out.penStyle = choose(pens, value, key);
    if (key == "align") out.alignment = choose(alignments, value, key);
    if (key == "shadow") out.shadow = flagFrom(value, key);
    if (key == "closed") out.closed = flagFrom(value, key);
    if (key == "filled") out.filled = flagFrom(value, key);
    if (key == "side" || key == "radius" || key == "head") out.length = lengthFrom(value, "\"" + key + "\"");
    if (key == "radii") readRadii(value, out);
    if (key == "turn") out.degrees = coordinate(value, "\"turn\"");
    if (key == "text") out.text = textFrom(value);
}

Annotation annotationFrom(const Json& figure, const Rules& rules) {
    Annotation out;
    out.kind = rules.kind;
    for (const char* needed : {"points", "side", "radius", "radii", "text"}) {
        const bool belongs = needed == std::string("points") ||
                             std::find(rules.keys.begin(), rules.keys.end(), needed) != rules.keys.end();
        if (belongs && !figure.contains(needed)) throw Refusal("needs \"" + std::string(needed) + "\"");
    }
    const std::array<std::string, 4> common{"figure", "points", "coordinates", "colour"};
    for (const auto& [key, value] : figure.items()) {
        const bool known = std::find(common.begin(), common.end(), key) != common.end() ||
                           std::find(rules.keys.begin(), rules.keys.end(), key) != rules.keys.end();
        if (!known) throw Refusal("has no property \"" + key + "\"");
        if (key == "points") out.points = pointsFrom(value, rules);
        readProperty(key, value, out);
    }
    return out;
}

/// The figure's place in the file goes before what is wrong with it.
Annotation annotationFrom(const Json& figure, std::size_t number) {
    std::string name = "annotation " + std::to_string(number);
    try {
        if (!figure.is_object() || !figure.contains("figure")) throw Refusal("must be {\"figure\": ...}");
        const Rules& rules = choose(figures(), figure["figure"], "figure");
        name += " (" + figure["figure"].get<std::string>() + ")";
        return annotationFrom(figure, rules);
    } catch (const Refusal& refusal) {
        throw Refusal(name + ": " + refusal.what());
    }
}

Json parse(const std::string& json) {
    try {
        return Json::parse(json);
    } catch (const Json::parse_error& error) {
        const auto end = json.begin() + static_cast<std::ptrdiff_t>(std::min(error.byte, json.size()));
        throw Refusal("is not JSON; the error is in line " + std::to_string(1 + std::count(json.begin(), end, '\n')));
    } catch (const Json::exception&) {
        throw Refusal("holds a number that is too large");
    }
}

}  // namespace

std::vector<Annotation> parseAnnotations(const std::string& json) {
    const Json document = parse(json);
    const bool right = document.is_object() && document.size() == 1 && document.contains("annotations") &&
                       document["annotations"].is_array() && document["annotations"].size() <= mostFigures;
    if (!right)
        throw Refusal("must be {\"annotations\": [...]} with at most " + std::to_string(mostFigures) + " of them");
    std::vector<Annotation> out;
    for (const Json& figure : document["annotations"]) out.push_back(annotationFrom(figure, out.size() + 1));
    return out;
}

std::vector<Annotation> readAnnotations(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    if (!file) throw Refusal("cannot be read: " + std::generic_category().message(errno));
    std::string json;
    try {
        file.exceptions(std::ios::badbit);
        for (char c = 0; json.size() <= mostBytes && file.get(c);) json += c;
    } catch (const std::ios::failure&) {
        throw Refusal("cannot be read");
    }
    if (json.size() > mostBytes) throw Refusal("is too large to be a list of annotations");
    return parseAnnotations(json);
}

}  // namespace viewing
