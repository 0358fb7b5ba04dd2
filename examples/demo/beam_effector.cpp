#include "beam_effector.h"

#include "records.h"

#include <orvo/communication/messenger.h>
#include <orvo/knowledgebase/injectors/injector_effector.h>

#include <boost/make_shared.hpp>

#include <cstdio>

namespace demo {

void BeamEffector::operator()(float x, float y, float rotation) {
    char command[96];
    std::snprintf(command, sizeof command, "(beam %.2f %.2f %.1f)", x, y, rotation);
    get_messenger()->send_message(command);
    boost::shared_ptr<orvo::knowledgebase::descriptors::Descriptor_Effector> record =
        boost::make_shared<EffectorRecord>(get_name(), command);
    (*get_effector_injector())(record);
}

} // namespace demo
