#ifndef ORVO_PERCEPTION_PERCEPTION_READER_H
#define ORVO_PERCEPTION_PERCEPTION_READER_H

#include <orvo/core/export.h>
#include <orvo/perception/perception.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace orvo::perception {

/// Why a message could not be read.
enum class ReadFault : std::uint8_t {
    none,
    unclosed,   ///< the message ends inside an element (cut short, or a ')' missing)
    unopened,   ///< a ')' that closes no element
    stray_text, ///< text outside every element
    bad_number, ///< a value that must be a number is missing or is not one
};

/// The outcome of reading one message: success, or the fault and the byte
/// offset in the message where reading stopped. A message that reads may
/// still have lost elements to values that are not numbers (see
/// Perception::lost_elements); `lost` counts them and `lost_offset` is where
/// the first bad value starts.
struct ORVO_API ReadResult {
    ReadFault fault = ReadFault::none;
    std::size_t offset = 0;
    std::uint32_t lost = 0;
    std::size_t lost_offset = 0;

    bool ok() const { return fault == ReadFault::none; }
    explicit operator bool() const { return ok(); }
    /// E.g. "not a number at byte 42"; "read" when ok, "read, 1 element lost
    /// (not a number at byte 12)" when ok with losses.
    std::string describe() const;
};

/// Reads the server's perception messages, e.g.
/// "(time (now 4.22))(GS (sl 0) (sr 0) (t 0.00) (pm BeforeKickOff))(HJ (n hj1) (ax -0.00))...",
/// in one pass, without building a tree. Elements and values it does not know
/// are skipped, wherever they are; elements it knows may carry extra values
/// after the ones it reads. A message is read as a sequence of whole elements,
/// so one cut between two elements reads as a shorter message; cut anywhere
/// else, it fails with ReadFault::unclosed at its end. A value that is not a
/// finite number ("nan", "inf", "-inf", or no number at all) costs only the
/// element that carries it: a joint, a sensor, the game state, a seen object,
/// one body part of a seen robot, a line, a heard message. That element reads
/// as not sent, the rest of the message is read, and the loss is counted.
class ORVO_API PerceptionReader {
public:
    PerceptionReader();

    /// Reads `message` into `out`, replacing what `out` held. Never throws and
    /// never reads outside `message`. On failure `out` holds the part read
    /// before the fault, which is not a whole perception: use the result.
    [[nodiscard]] ReadResult read(std::string_view message, Perception& out) const;

private:
    /// Perceptor names ("hj1", "llj7") packed into an integer, by Joint.
    std::array<std::uint32_t, robot::joint_count> joint_keys{};
};

} // namespace orvo::perception

#endif
