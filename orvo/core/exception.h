#ifndef ORVO_CORE_EXCEPTION_H
#define ORVO_CORE_EXCEPTION_H

#include <orvo/core/export.h>

#include <ostream>
#include <string>

namespace orvo {

/// Builds the location text of a raising site:
/// "<file>: In function '<function>' (line <line>): ".
ORVO_API std::string gen_ffl_string(const char* file, const char* function, int line);

/// Root of everything the framework reports on purpose. Deliberately not a
/// std::exception: handlers for standard errors must not swallow framework
/// failures. The type text is data, so a chained exception keeps the kind of
/// its cause whatever its own class is.
class ORVO_API Exception {
public:
    Exception(const std::string& source, const std::string& message, const std::string& type);
    /// Chains: the source becomes `source` + "\n--> " + the cause's source;
    /// message and type are the cause's.
    Exception(const std::string& source, const Exception& cause);
    virtual ~Exception();

    virtual const std::string& get_source() const;
    virtual const std::string& get_message() const;
    virtual const std::string& get_type() const;
    /// Writes "Exception of type(<type>):\n<source>\n\t<message>" (no newline).
    virtual std::ostream& print(std::ostream& out) const;

private:
    std::string source_;
    std::string message_;
    std::string type_;
};

/// A component could not find a collaborator it needs.
class ORVO_API LinkException : public Exception {
public:
    LinkException(const std::string& source, const std::string& requester_name,
                  const std::string& missing_name);
    /// Re-raises `other` under a new source; the old source is dropped, not chained.
    LinkException(const std::string& source, const LinkException& other);
    ~LinkException() override;
};

/// An operation was called in a state that does not allow it.
class ORVO_API LogicException : public Exception {
public:
    LogicException(const std::string& source, const std::string& message);
    ~LogicException() override;
};

/// A knowledge-base lookup found nothing under the key it was given.
class ORVO_API DataUnavailableException : public Exception {
public:
    DataUnavailableException(const std::string& source, const std::string& message);
    ~DataUnavailableException() override;
};

/// An index operator was given an index outside its range.
class ORVO_API ValueOutOfBoundsException : public Exception {
public:
    ValueOutOfBoundsException(const std::string& source, const std::string& message);
    ~ValueOutOfBoundsException() override;
};

} // namespace orvo

#endif
