#include "scenario/GpxPoints.h"

#include "scenario/Numbers.h"
#include "scenario/ScenarioError.h"
#include "scenario/UtcText.h"
#include "support/Words.h"

#include <pugixml.hpp>

#include <algorithm>

namespace arcsim {

namespace {

constexpr std::size_t kLongestShownText = 40;

std::string trimmed(const std::string& text)
{
    const char* const blanks = " \t\r\n";
    const std::size_t begin = text.find_first_not_of(blanks);
    return begin == std::string::npos ? "" : text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

std::string textOf(const pugi::xml_node& point, const char* child)
{
    return trimmed(point.child(child).text().get());
}

class PointReader
{
public:
    explicit PointReader(const GpxText& source) : m_source(source) {}

    void addAll(const pugi::xml_node& parent, const char* name)
    {
        for (const pugi::xml_node& node : parent.children(name)) {
            if (points.size() == kMostGpxPoints)
                m_source.failAt(node.offset_debug(),
                                "more points are not accepted; accepted: at most " + std::to_string(kMostGpxPoints));
            points.push_back(read(node));
        }
    }

    std::vector<GpxPoint> points{};

private:
    GpxPoint read(const pugi::xml_node& node)
    {
        GpxPoint point;
        point.offset = node.offset_debug();
        point.waypoint.latitudeDeg = number(node, "lat", node.attribute("lat").value(), -89, 89);
        point.waypoint.longitudeDeg = number(node, "lon", node.attribute("lon").value(), -180, 180);
        if (node.child("ele"))
            m_altitudeM = number(node, "ele", textOf(node, "ele"), -500, 9000);
        point.waypoint.altitudeM = m_altitudeM;
        if (node.child("time")) {
            point.timeText = textOf(node, "time");
            point.time = parseUtc(point.timeText);
            if (!point.time)
                m_source.refuse(points.size(), point.offset, "time", point.timeText,
                                "a time like 2024-06-12T03:00:00Z");
        }
        return point;
    }

    double number(const pugi::xml_node& node, const char* what, const std::string& text, double lowest,
                  double highest) const
    {
        const std::optional<double> value = parseNumber(trimmed(text));
        if (!value || !(*value >= lowest && *value <= highest))  // nor NaN
            m_source.refuse(points.size(), node.offset_debug(), what, text,
                            "a number from " + shownNumber(lowest) + " to " + shownNumber(highest));
        return *value;
    }

    const GpxText& m_source;
    double m_altitudeM = 0;  ///< of the last point that has one
};

}  // namespace

void GpxText::failAt(std::ptrdiff_t offset, const std::string& complaint) const
{
    const auto length = static_cast<std::ptrdiff_t>(m_text.size());
    const auto line =
        1 + std::count(m_text.begin(), m_text.begin() + std::clamp<std::ptrdiff_t>(offset, 0, length), '\n');
    throw ScenarioError(m_file + ":" + std::to_string(line) + ": " + complaint);
}

void GpxText::refuse(std::size_t index, std::ptrdiff_t offset, const char* what, const std::string& value,
                     const std::string& accepted) const
{
    failAt(offset, "point " + std::to_string(index + 1) + ": " + what + ": \"" +
                       support::shortened(value, kLongestShownText) + "\" is not accepted; accepted: " + accepted);
}

std::vector<GpxPoint> GpxText::points() const
{
    pugi::xml_document document;
    const pugi::xml_parse_result result =
        document.load_buffer(m_text.data(), m_text.size(), pugi::parse_default, pugi::encoding_utf8);
    if (!result)
        failAt(result.offset, std::string("no XML: ") + result.description() + "; accepted: a GPX file");
    const pugi::xml_node top = document.document_element();
    const pugi::xml_node gpx = document.child("gpx");
    if (!gpx)
        failAt(top.offset_debug(), "the element " + support::shortened(top.name(), kLongestShownText) +
                                       " is not accepted; accepted: a GPX file, which has the element gpx");
    PointReader reader(*this);
    for (const pugi::xml_node& track : gpx.children("trk"))
        for (const pugi::xml_node& segment : track.children("trkseg"))
            reader.addAll(segment, "trkpt");
    if (reader.points.empty())
        for (const pugi::xml_node& route : gpx.children("rte"))
            reader.addAll(route, "rtept");
    if (reader.points.empty())
        reader.addAll(gpx, "wpt");
    if (reader.points.empty())
        failAt(gpx.offset_debug(), "no point is in it; accepted: at least one trkpt, rtept or wpt");
    return reader.points;
}

}  // namespace arcsim
