#include "head_effector.h"

#include "records.h"

#include <orvo/communication/messenger.h>
#include <orvo/knowledgebase/injectors/injector_effector.h>

#include <boost/make_shared.hpp>

#include <cstdio>

namespace demo {

void HeadEffector::operator()(float pan, float tilt) {
    char command[64];
    std::snprintf(command, sizeof command, "(he1 %.2f)(he2 %.2f)", pan, tilt);
    get_messenger()->send_message(command);
    boost::shared_ptr<orvo::knowledgebase::descriptors::Descriptor_Effector> record =
        boost::make_shared<EffectorRecord>(get_name(), command);
    (*get_effector_injector())(record);
}

} // namespace demo
