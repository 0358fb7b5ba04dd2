#include <orvo/orvo.h>

#include <iostream>
#include <sstream>

int main() {
    orvo::Exception failure(orvo::gen_ffl_string("consumer.cpp", "main", 1), "linked", "Exception");
    std::ostringstream text;
    failure.print(text);
    if (text.str().find("linked") == std::string::npos) {
        return 1;
    }
    std::cout << text.str() << '\n';
    return 0;
}
