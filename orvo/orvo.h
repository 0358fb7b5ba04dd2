#ifndef ORVO_ORVO_H
#define ORVO_ORVO_H

// Every public header of the library.

// core
#include <orvo/core/agent.h>
#include <orvo/core/architect.h>
#include <orvo/core/constructable_proxy.h>
#include <orvo/core/exception.h>
#include <orvo/core/export.h>
#include <orvo/humanoid/base/constructable.h>
#include <orvo/params/param_set.h>

// behaviors
#include <orvo/behaviors/behavior.h>

// net
#include <orvo/net/addr.h>
#include <orvo/net/comm_unit.h>
#include <orvo/net/errors.h>
#include <orvo/net/frame_reader.h>
#include <orvo/net/socket.h>
#include <orvo/net/socket_stream_buf.h>
#include <orvo/net/tcp_socket.h>
#include <orvo/net/udp_socket.h>

// communication
#include <orvo/communication/configuration.h>
#include <orvo/communication/messenger.h>
#include <orvo/communication/say_codec.h>

// debug
#include <orvo/debug/debug_drawings.h>
#include <orvo/debug/drawing_command.h>

// protocol
#include <orvo/protocol/constants.h>
#include <orvo/protocol/drawing_wire.h>
#include <orvo/protocol/framing.h>
#include <orvo/protocol/play_modes.h>

// math
#include <orvo/math/mvexception.h>
#include <orvo/math/mvtools.h>
#include <orvo/math/polar.h>
#include <orvo/math/polygon.h>
#include <orvo/math/random_number_generator.h>
#include <orvo/math/rotation_matrix.h>
#include <orvo/math/vector2d.h>
#include <orvo/math/vector3.h>
#include <orvo/math/vector3d.h>

// knowledgebase
#include <orvo/knowledgebase/actionlog.h>
#include <orvo/knowledgebase/descriptors/descriptor.h>
#include <orvo/knowledgebase/descriptors/descriptor_action.h>
#include <orvo/knowledgebase/descriptors/descriptor_effector.h>
#include <orvo/knowledgebase/descriptors/descriptor_skill.h>
#include <orvo/knowledgebase/descriptors/property.h>
#include <orvo/knowledgebase/extractors/extractor.h>
#include <orvo/knowledgebase/extractors/extractor_action.h>
#include <orvo/knowledgebase/injectors/injector.h>
#include <orvo/knowledgebase/injectors/injector_action.h>
#include <orvo/knowledgebase/injectors/injector_effector.h>
#include <orvo/knowledgebase/injectors/injector_skill.h>
#include <orvo/knowledgebase/knowledgebase_module.h>
#include <orvo/knowledgebase/mappers/mapper.h>

// skills
#include <orvo/skills/joint_controller.h>
#include <orvo/skills/motion.h>
#include <orvo/skills/motion_player.h>
#include <orvo/skills/skill.h>
#include <orvo/skills/skill_joints.h>

// effectors
#include <orvo/effectors/effector.h>
#include <orvo/effectors/effector_joints.h>
#include <orvo/effectors/effector_say.h>

// robot
#include <orvo/robot/joints.h>

// body
#include <orvo/body/body_model.h>
#include <orvo/body/kinematics.h>

// perception
#include <orvo/perception/perception.h>
#include <orvo/perception/perception_reader.h>
#include <orvo/perception/play_mode.h>
#include <orvo/perception/reused_list.h>

// monitor
#include <orvo/monitor/ground_truth.h>
#include <orvo/monitor/monitor_client.h>
#include <orvo/monitor/play_modes.h>
#include <orvo/monitor/scene_reader.h>
// world model, head, drawings of the beliefs
#include <orvo/beliefs/belief_drawings.h>
#include <orvo/head/head_aim.h>
#include <orvo/head/skill_head.h>
#include <orvo/world/beliefs.h>
#include <orvo/world/field.h>
#include <orvo/world/localizer.h>
#include <orvo/world/param_file.h>
#include <orvo/world/sightings.h>
#include <orvo/world/world_model.h>
#include <orvo/world/world_params.h>

// falls and getting up
#include <orvo/fall/fall_detector.h>
#include <orvo/fall/fall_params.h>
#include <orvo/getup/getup.h>
#include <orvo/getup/getup_motions.h>
#include <orvo/getup/skill_getup.h>
// walk
#include <orvo/walk/gait.h>
#include <orvo/walk/leg_targets.h>
#include <orvo/walk/skill_walk.h>
#include <orvo/walk/walk_params.h>
#include <orvo/walk/walker.h>

// kick
#include <orvo/kick/kick_motion.h>
#include <orvo/kick/kick_params.h>
#include <orvo/kick/kick_plan.h>
#include <orvo/kick/kicker.h>
#include <orvo/kick/skill_kick.h>

#endif
