// orvo_game_stats: the statistics of a game from its monitor record. See --help.
#include "game_stats.h"

#include <fstream>
#include <iostream>
#include <stdexcept>
#include <string>

namespace {

const char* const usage = R"usage(usage: orvo_game_stats RECORD [--table FILE] [--plot FILE]

Reads a game's monitor record (one monitor message per line, as
orvo_monitor_record writes it) and writes its statistics: goals, possession
(the team nearest the ball during PlayOn), how far each robot walked, falls
per robot per minute, the referee's fouls and the time in each play mode.

  --table FILE   the Markdown table (default: standard output)
  --plot FILE    the SVG plot (default: RECORD with ".svg" for its extension)
)usage";

/// Written via a temporary file, so that nobody reads half of it.
void write_file(const std::string& path, const std::string& text) {
    const std::string temporary = path + ".tmp";
    {
        std::ofstream out(temporary, std::ios::binary | std::ios::trunc);
        if (!(out << text) || !out.flush()) {
            throw std::runtime_error("cannot write " + path);
        }
    }
    if (std::rename(temporary.c_str(), path.c_str()) != 0) {
        throw std::runtime_error("cannot write " + path);
    }
}

std::string plot_path_for(const std::string& record) {
    const auto slash = record.find_last_of('/');
    const auto dot = record.find_last_of('.');
    const bool has_extension =
        dot != std::string::npos && (slash == std::string::npos || dot > slash);
    return (has_extension ? record.substr(0, dot) : record) + ".svg";
}

} // namespace

int main(int argc, char** argv) {
    std::string record, table, plot;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        if (arg == "--help" || arg == "-h") {
            std::cout << usage;
            return 0;
        }
        if ((arg == "--table" || arg == "--plot") && i + 1 < argc) {
            (arg == "--table" ? table : plot) = argv[++i];
        } else if (record.empty() && arg.rfind("--", 0) != 0) {
            record = arg;
        } else {
            std::cerr << "orvo_game_stats: unexpected argument: " << arg << " (see --help)\n";
            return 2;
        }
    }
    if (record.empty()) {
        std::cerr << usage;
        return 2;
    }
    try {
        const auto stats = game_stats::read_record(record);
        if (stats.messages == 0) {
            throw std::runtime_error(record + " holds no monitor message");
        }
        const std::string text = game_stats::markdown_table(stats);
        if (table.empty()) {
            std::cout << text;
        } else {
            write_file(table, text);
        }
        write_file(plot.empty() ? plot_path_for(record) : plot, game_stats::plot_svg(stats));
    } catch (const std::exception& error) {
        std::cerr << "orvo_game_stats: " << error.what() << '\n';
        return 1;
    }
    return 0;
}
