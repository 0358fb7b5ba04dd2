#include <orvo/communication/messenger.h>

#include <support/loopback.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

using orvo::Class_Map;
using orvo::communication::Configuration;
using orvo::communication::Messenger;
using orvo::net::CommUnit;

namespace {

using MessengerTest = orvo_test::NoDescriptorLeak;

/// The configuration a plug-in would supply.
class FixedConfiguration : public Configuration {
public:
    FixedConfiguration(const std::string& host, unsigned int port) {
        server_host = host;
        server_port = port;
        run_value = 11;
    }
};

} // namespace

TEST_F(MessengerTest, MissingCollaboratorsRaiseFromTheMessengersLink) {
    FixedConfiguration configuration("127.0.0.1", 1);
    CommUnit communit;
    const std::vector<std::pair<Class_Map, std::string>> cases{
        {{{"configuration", &configuration}}, "communit"},
        {{{"communit", &communit}}, "configuration"}};
    for (auto [classes, missing] : cases) {
        Messenger messenger;
        try {
            messenger.link(classes);
            ADD_FAILURE() << "linked without " << missing;
        } catch (const orvo::LinkException& error) {
            EXPECT_EQ(error.get_source(),
                      "communication/src/messenger.cpp: In function 'link' (line 63): ");
            EXPECT_EQ(error.get_message(),
                      "Error while linking <messenger>\n\t-> class <" + missing + "> not found");
        }
    }
}
