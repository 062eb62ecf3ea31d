#include "kelarc/ModuleSetting.h"

namespace kelarc {

void KelArc::getModuleSetting(const std::string& key, std::function<void(int, std::string&&)>&& callback)
{
    readSetting(key, callback);
}

void KelArc::setModuleSetting(const std::string& key, const std::string& value,
                              std::function<void(int, bool)>&& callback)
{
    writeSetting(key, value, callback);
}

}  // namespace kelarc
