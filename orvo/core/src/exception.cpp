#include <orvo/core/exception.h>

#include <sstream>

namespace orvo {

std::string gen_ffl_string(const char* file, const char* function, int line) {
    std::ostringstream text;
    text << file << ": In function '" << function << "' (line " << line << "): ";
    return text.str();
}

Exception::Exception(const std::string& source, const std::string& message, const std::string& type)
    : source_(source), message_(message), type_(type) {}

Exception::Exception(const std::string& source, const Exception& cause)
    : source_(source + "\n--> " + cause.get_source()), message_(cause.get_message()),
      type_(cause.get_type()) {}

Exception::~Exception() = default;

const std::string& Exception::get_source() const {
    return source_;
}
const std::string& Exception::get_message() const {
    return message_;
}
const std::string& Exception::get_type() const {
    return type_;
}

std::ostream& Exception::print(std::ostream& out) const {
    return out << "Exception of type(" << get_type() << "):\n"
               << get_source() << "\n\t" << get_message();
}

LinkException::LinkException(const std::string& source, const std::string& requester_name,
                             const std::string& missing_name)
    : Exception(source,
                "Error while linking <" + requester_name + ">\n\t-> class <" + missing_name +
                    "> not found",
                "LinkException") {}

LinkException::LinkException(const std::string& source, const LinkException& other)
    : Exception(source, other.get_message(), other.get_type()) {}

LinkException::~LinkException() = default;

LogicException::LogicException(const std::string& source, const std::string& message)
    : Exception(source, message, "LogicException") {}
LogicException::~LogicException() = default;

DataUnavailableException::DataUnavailableException(const std::string& source,
                                                   const std::string& message)
    : Exception(source, message, "DataUnavailableException") {}
DataUnavailableException::~DataUnavailableException() = default;

ValueOutOfBoundsException::ValueOutOfBoundsException(const std::string& source,
                                                     const std::string& message)
    : Exception(source, message, "ValueOutOfBoundsException") {}
ValueOutOfBoundsException::~ValueOutOfBoundsException() = default;

} // namespace orvo
