// SPDX-License-Identifier: MIT
#pragma once

#include <set>
#include <string>

#include "server/Configuration.h"

namespace ZorvaneServer {

/// Takes the lines of the file, one after the other.
class ConfigurationParser
{
public:
    ConfigurationParser(std::string file, Configuration &result)
        : fileName(std::move(file)), target(result)
    {
    }

    void take(std::string line);
    /// What can only be said at the end of the file.
    void finish();

private:
    void beginSection(const std::string &title);
    void beginCamera(const std::string &name);
    void set(const std::string &key, const std::string &value);
    bool setIn(const std::string &key, const std::string &value);
    void setFolder(std::string *folder, const std::string &key, const std::string &value);
    void setPort(int *port, const std::string &key, const std::string &value);
    bool setService(const std::string &key, const std::string &value);
    bool setArchive(const std::string &key, const std::string &value);
    bool setCamera(const std::string &key, const std::string &value);
    void setUrl(CameraSource *source, const std::string &value);
    void endCamera();
    void error(const std::string &what) { errorAt(lineNumber, what); }
    void errorAt(int line, const std::string &what);

    enum class Section { None, Archive, Service, Camera, Unknown };

    const std::string fileName;
    Configuration &target;
    int lineNumber = 0;
    int portLine = 0; ///< that named one last
    Section section = Section::None;
    std::set<std::string> seenKeys; ///< of this section
    CameraSource shared;            ///< what holds for both streams of a camera
};

} // namespace ZorvaneServer
