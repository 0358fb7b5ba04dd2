#include "recording.h"

#include <fstream>
#include <istream>
#include <sstream>
#include <stdexcept>

namespace orvo::record {

namespace {

/// The end of the element that opens at `open`, just past its ')'.
std::size_t element_end(const std::string& text, std::size_t open) {
    int depth = 0;
    for (std::size_t i = open; i < text.size(); ++i) {
        if (text[i] == '(')
            ++depth;
        else if (text[i] == ')' && --depth == 0)
            return i + 1;
    }
    return text.size();
}

bool kept(const std::string& element) {
    for (const char* head : {"(time", "(GS", "(See", "(ACC", "(HJ (n hj1)", "(HJ (n hj2)"})
        if (element.rfind(head, 0) == 0)
            return true;
    return false;
}

} // namespace

std::string cut_down(const std::string& payload) {
    std::string out;
    std::size_t at = payload.find('(');
    while (at != std::string::npos) {
        const std::size_t end = element_end(payload, at);
        const std::string element = payload.substr(at, end - at);
        if (kept(element))
            out += element;
        at = payload.find('(', end);
    }
    return out;
}

std::vector<Frame> read_recording(std::istream& in) {
    std::vector<Frame> frames;
    Frame current;
    std::string line;
    while (std::getline(in, line)) {
        if (line.empty() || line[0] == '#')
            continue;
        std::istringstream fields(line);
        std::string kind;
        fields >> kind;
        if (kind == "see") {
            current.payload = line.substr(4);
            frames.push_back(current);
            current.dx = current.dy = current.dturn_deg = 0;
        } else if (kind == "truth") {
            current.truth_known =
                static_cast<bool>(fields >> current.x >> current.y >> current.heading_deg);
        } else if (kind == "ball") {
            current.ball_known = static_cast<bool>(fields >> current.ball_x >> current.ball_y);
        } else if (kind == "step") {
            fields >> current.dx >> current.dy >> current.dturn_deg;
        } else {
            throw std::runtime_error("recording: unknown line \"" + line.substr(0, 40) + "\"");
        }
    }
    return frames;
}

std::vector<Frame> read_recording_file(const std::string& path) {
    std::ifstream in(path);
    if (!in)
        throw std::runtime_error("recording: cannot read " + path);
    return read_recording(in);
}

} // namespace orvo::record
