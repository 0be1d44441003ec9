// SPDX-License-Identifier: MIT
#include "linux/phones/PhoneLibrary.h"

#include <cstdlib>
#include <dlfcn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace kivo {
namespace {

// The name of its binary interface since 2020. Looking up a symbol in it finds those of the libraries below it,
// whose own names differ between distributions.
constexpr const char* usualName = "libimobiledevice-1.0.so.6";

template <typename Function>
bool find(void* library, const char* name, Function*& function) {
    function = reinterpret_cast<Function*>(dlsym(library, name));
    return function != nullptr;
}

} // namespace

bool PhoneLibrary::load() {
    const char* other = std::getenv("KIVO_IOS_LIBRARY");
    void* library = dlopen(other ? other : usualName, RTLD_NOW | RTLD_LOCAL);
    return library && find(library, "idevice_new_with_options", deviceNew) &&
           find(library, "idevice_free", deviceFree) &&
           find(library, "lockdownd_client_new_with_handshake", clientNewWithHandshake) &&
           find(library, "lockdownd_client_free", clientFree) &&
           find(library, "lockdownd_get_value", getValue) &&
           find(library, "lockdownd_start_service", startService) &&
           find(library, "lockdownd_service_descriptor_free", descriptorFree) &&
           find(library, "property_list_service_client_new", serviceNew) &&
           find(library, "property_list_service_client_free", serviceFree) &&
           find(library, "property_list_service_send_xml_plist", serviceSend) &&
           find(library, "property_list_service_receive_plist_with_timeout", serviceReceive) &&
           find(library, "usbmuxd_read_pair_record", readPairRecord) &&
           find(library, "plist_from_xml", valueFromXml) && find(library, "plist_to_xml", valueToXml) &&
           find(library, "plist_free", valueFree);
}

bool PhoneLibrary::isThere() {
    const pid_t child = fork();
    if (child == 0)
        _exit(PhoneLibrary().load() ? 0 : 1);
    int status = 0;
    return child > 0 && waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

} // namespace kivo
