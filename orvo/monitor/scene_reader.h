#ifndef ORVO_MONITOR_SCENE_READER_H
#define ORVO_MONITOR_SCENE_READER_H

#include <orvo/core/export.h>
#include <orvo/monitor/ground_truth.h>

#include <string_view>
#include <vector>

namespace orvo::monitor {

class SceneText;

/// What a SceneReader has met so far.
struct ReaderCounts {
    long messages = 0;
    long scenes = 0;    ///< whole scenes (the first message, and again when robots join)
    long malformed = 0; ///< messages cut short or not in the monitor's syntax
    /// Updates whose nodes did not match the scene held: the part that
    /// matched was applied.
    long mismatched = 0;
};

/// Keeps the ground truth of one monitor connection from its messages: the
/// environment header, the whole scene graph, and the updates that follow it
/// (an unchanged node is an empty "(nd)", a moved transform carries its new
/// "(SLT ...)"). Robots are found by their torso's mesh ("naobody<type>",
/// which also names type 4, whose materials do not); the torso's materials
/// give side and number. The ball is the transform holding the ball's mesh.
/// The header's "(foul INDEX TYPE TEAM NUMBER)" entries are the referee's
/// fouls.
///
/// Once a scene has been read, updates of that scene allocate nothing (but
/// for the rare header that announces a foul).
/// A malformed message keeps what was read before the fault.
class ORVO_API SceneReader {
public:
    SceneReader();
    ~SceneReader();

    /// Applies one message; true when the ground truth changed.
    bool read(std::string_view message);

    const GroundTruth& truth() const { return truth_; }
    /// Robot `number` of `side`, or null when the scene holds none.
    const RobotTruth* robot(Side side, int number) const;
    const ReaderCounts& counts() const { return counts_; }
    /// Whether a whole scene has arrived.
    bool has_scene() const { return !nodes_.empty(); }

private:
    enum class Role : unsigned char { other, ball, torso, part };
    struct Node {
        int parent = -1;
        int depth = 0;
        bool transform = false;
        Role role = Role::other;
        bool right = false; ///< materials: side
        int number = 0;     ///< materials: shirt number
        int type = 0;       ///< torso mesh: robot type
        int name = -1;      ///< part mesh: index of its part name
        double m[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};
    };
    /// A robot's transforms: the torso's and every part's, in scene order.
    struct RobotNodes {
        int torso = -1;
        int mesh = -1;
        std::vector<int> parts;
    };

    bool read_header(SceneText& text);
    void read_foul(SceneText& text);
    bool read_scene(SceneText& text, bool whole);
    bool read_node(SceneText& text, int parent, int depth, bool whole);
    bool read_attribute(SceneText& text, std::string_view name, int node, bool whole);
    void read_matrix(SceneText& text, int node);
    void classify_mesh(Node& node, std::string_view mesh);
    void classify_material(Node& node, std::string_view material);
    void index_scene();
    void index_robot(int mesh, RobotNodes& robot);
    /// The part name of the first model in `node`'s subtree, or -1.
    int model_below(int node) const;
    void describe_robot(const RobotNodes& nodes, RobotTruth& robot) const;
    void derive();
    void pose_of(int node, Pose& pose) const;

    GroundTruth truth_;
    ReaderCounts counts_;
    std::vector<Node> nodes_;
    std::vector<RobotNodes> robot_nodes_;
    std::size_t robot_count_ = 0;
    int ball_ = -1;
    int next_ = 0; ///< the node an update's next "(nd" refers to
    bool changed_ = false;
};

} // namespace orvo::monitor

#endif
