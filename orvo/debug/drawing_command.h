#ifndef ORVO_DEBUG_DRAWING_COMMAND_H
#define ORVO_DEBUG_DRAWING_COMMAND_H

#include <orvo/core/export.h>

#include <string>
#include <utility>

namespace orvo {

/// One drawing an agent wants the debug viewer to show. Concrete commands
/// (points, lines, polygons, ...) are defined by plug-ins; each encodes itself
/// into one datagram whose layout is its own business.
///
/// The collector destroys commands through a DrawingCommand pointer, so the
/// destructor is virtual: a derived command is destroyed whole and may hold
/// members that need destruction (strings, vectors, ...).
class ORVO_API DrawingCommand {
public:
    /// The share of the send buffer each command may use: serialize() must
    /// write at most this many bytes. DebugDrawings::send() rejects (does not
    /// send) a command that reports a longer or negative length.
    static constexpr int max_size = 512;

    DrawingCommand() = default;
    explicit DrawingCommand(std::string name) : name(std::move(name)) {}
    virtual ~DrawingCommand();

    /// Writes the command's datagram to the start of `buffer`, which holds at
    /// least max_size bytes, and returns its length in bytes. `header` is the
    /// collector's team and agent byte (bit 7 team, bits 0-6 agent id), for
    /// layouts that carry it.
    virtual int serialize(int header, unsigned char* buffer) = 0;

    /// The drawing's name.
    std::string name;
};

} // namespace orvo

#endif
