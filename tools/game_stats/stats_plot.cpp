#include "game_stats.h"

#include <orvo/monitor/play_modes.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <set>
#include <sstream>

namespace game_stats {

namespace {

constexpr double width = 960;
constexpr double axis_left = 150, axis_right = 930;
constexpr double modes_top = 60, nearest_top = 100, band = 28, fouls_top = 140;
constexpr double axis_top = 166, legend_top = 208;
constexpr double robots_top = 260, row = 22;
constexpr double walk_left = 150, walk_right = 520, falls_left = 620, falls_right = 890;
// The viewer's colours of the two teams.
constexpr const char* team_colour[] = {"#fdd835", "#1e88e5"};

std::string number(double value, int decimals = 1) {
    char text[32];
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    return text;
}

std::string escaped(const std::string& text) {
    std::string out;
    for (const char c : text) {
        out += c == '<' ? "&lt;" : c == '>' ? "&gt;" : c == '&' ? "&amp;" : std::string(1, c);
    }
    return out;
}

/// A colour of its own for each play mode, PlayOn green as the grass.
std::string mode_colour(int mode) {
    if (orvo::monitor::play_mode_name(mode) == "PlayOn") {
        return "#43a047";
    }
    static const char* const palette[] = {"#8d6e63", "#ab47bc", "#26c6da", "#ffa726", "#ef5350",
                                          "#5c6bc0", "#d4e157", "#78909c", "#ec407a"};
    return palette[static_cast<unsigned>(mode) % (sizeof palette / sizeof palette[0])];
}

/// A step of 1, 2 or 5 times a power of ten that gives some ten ticks.
double tick_step(double span) {
    const double rough = std::max(span, 1e-3) / 10;
    const double power = std::pow(10.0, std::floor(std::log10(rough)));
    for (const double factor : {1.0, 2.0, 5.0}) {
        if (factor * power >= rough) {
            return factor * power;
        }
    }
    return 10 * power;
}

class Plot {
public:
    explicit Plot(const GameStats& stats) : stats(stats) {}

    std::string svg() {
        const double height =
            robots_top + 30 +
            row * static_cast<double>(std::max<std::size_t>(stats.robots.size(), 1));
        out << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" << width << "\" height=\""
            << height << "\" viewBox=\"0 0 " << width << ' ' << height
            << "\" font-family=\"sans-serif\" font-size=\"12\">\n"
            << "<rect width=\"100%\" height=\"100%\" fill=\"#ffffff\"/>\n";
        text(12, 28,
             escaped(team_label(stats, Side::left)) + ' ' + std::to_string(stats.score_left) +
                 " : " + std::to_string(stats.score_right) + ' ' +
                 escaped(team_label(stats, Side::right)),
             "font-size=\"18\"");
        timeline();
        robots();
        out << "</svg>\n";
        return out.str();
    }

private:
    double x_of(double seconds) const {
        const double span = std::max(stats.seconds, 1e-3);
        return axis_left + (axis_right - axis_left) * seconds / span;
    }

    void text(double x, double y, const std::string& content, const std::string& extra = "") {
        out << "<text x=\"" << number(x) << "\" y=\"" << number(y) << "\" " << extra << '>'
            << content << "</text>\n";
    }

    void rect(double x, double y, double w, double h, const std::string& fill) {
        out << "<rect x=\"" << number(x) << "\" y=\"" << number(y) << "\" width=\""
            << number(std::max(w, 0.5)) << "\" height=\"" << number(h) << "\" fill=\"" << fill
            << "\"/>\n";
    }

    void timeline() {
        text(12, modes_top + 18, "play mode");
        text(12, nearest_top + 18, "nearest the ball");
        text(12, fouls_top + 14, "fouls");
        std::set<int> seen;
        for (const auto& stretch : stats.modes) {
            rect(x_of(stretch.from), modes_top, x_of(stretch.to) - x_of(stretch.from), band,
                 mode_colour(stretch.value));
            seen.insert(stretch.value);
        }
        for (const auto& stretch : stats.nearest) {
            rect(x_of(stretch.from), nearest_top, x_of(stretch.to) - x_of(stretch.from), band,
                 stretch.value < 0 ? "#e0e0e0" : team_colour[stretch.value]);
        }
        axis();
        events();
        double x = axis_left;
        for (const int mode : seen) {
            const auto name = orvo::monitor::play_mode_name(mode);
            rect(x, legend_top, 12, 12, mode_colour(mode));
            text(x + 16, legend_top + 11, name.empty() ? std::to_string(mode) : std::string(name));
            x += 30 + 7.0 * static_cast<double>(name.size());
        }
    }

    void axis() {
        const double step = tick_step(stats.seconds);
        const double y = axis_top;
        out << "<line x1=\"" << axis_left << "\" y1=\"" << y << "\" x2=\"" << axis_right
            << "\" y2=\"" << y << "\" stroke=\"#000\"/>\n";
        for (double t = 0; t <= stats.seconds + 1e-9; t += step) {
            out << "<line x1=\"" << number(x_of(t)) << "\" y1=\"" << number(y) << "\" x2=\""
                << number(x_of(t)) << "\" y2=\"" << number(y + 5) << "\" stroke=\"#000\"/>\n";
            text(x_of(t), y + 18, number(t, step < 1 ? 1 : 0), "text-anchor=\"middle\"");
        }
        text(axis_right, y + 32, "server time (s)", "text-anchor=\"end\"");
    }

    /// Goals as lines across both bands, fouls as marks below them.
    void events() {
        for (const auto& goal : stats.goals) {
            const double x = x_of(goal.at);
            out << "<line class=\"goal\" x1=\"" << number(x) << "\" y1=\"" << modes_top - 6
                << "\" x2=\"" << number(x) << "\" y2=\"" << nearest_top + band
                << "\" stroke=\"#000\" stroke-width=\"2\"/>\n";
            text(x, modes_top - 9,
                 std::to_string(goal.score_left) + ':' + std::to_string(goal.score_right),
                 "text-anchor=\"middle\" font-weight=\"bold\"");
        }
        for (std::size_t i = 0; i < stats.fouls.size(); ++i) {
            const double x = x_of(stats.foul_at[i]);
            const double y = fouls_top + 14;
            out << "<path class=\"foul\" d=\"M" << number(x) << ' ' << number(y - 10)
                << " l5 9 h-10 z\" fill=\"#d32f2f\"/>\n";
            // Near the right end the label goes to the left of its mark.
            const bool room = x < axis_right - 160;
            const auto& foul = stats.fouls[i];
            text(room ? x + 7 : x - 7, y,
                 escaped(team_label(stats, foul.side)) + ' ' + std::to_string(foul.number) + ' ' +
                     std::string(foul.type_name()),
                 room ? "fill=\"#d32f2f\"" : "fill=\"#d32f2f\" text-anchor=\"end\"");
        }
    }

    void robots() {
        double most_walked = 1, most_falls = 1;
        for (const auto& robot : stats.robots) {
            most_walked = std::max(most_walked, robot.walked);
            most_falls = std::max(most_falls, robot.falls_per_minute());
        }
        text(walk_left, robots_top - 8, "walked (m)");
        text(falls_left, robots_top - 8, "falls per minute");
        double y = robots_top;
        for (const auto& robot : stats.robots) {
            const int side = robot.side == Side::left ? 0 : 1;
            text(12, y + 14,
                 escaped(team_label(stats, robot.side)) + ' ' + std::to_string(robot.number));
            const double walked = (walk_right - walk_left) * robot.walked / most_walked;
            rect(walk_left, y + 3, walked, row - 6, team_colour[side]);
            text(walk_left + walked + 4, y + 14, number(robot.walked));
            const double falls = (falls_right - falls_left) * robot.falls_per_minute() / most_falls;
            rect(falls_left, y + 3, falls, row - 6, "#d32f2f");
            text(falls_left + falls + 4, y + 14, number(robot.falls_per_minute(), 2));
            y += row;
        }
    }

    const GameStats& stats;
    std::ostringstream out;
};

} // namespace

std::string plot_svg(const GameStats& stats) {
    return Plot(stats).svg();
}

} // namespace game_stats
