// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

namespace kivo {

// The functions of libimobiledevice, and of the two libraries below it, that are used; found at run time, so
// that neither building nor running Kivo needs them. Declared here as they are from 1.3.0 to 1.4.0. Service
// descriptors, whose fields differ between those, are passed on unseen.
struct PhoneLibrary {
    // Opaque to us.
    using Value = void*;  // plist_t
    using Device = void*; // idevice_t
    using Client = void*; // lockdownd_client_t
    using Descriptor = void*;
    using Service = void*; // property_list_service_client_t

    int (*deviceNew)(Device*, const char* identifier, int lookUp);
    int (*deviceFree)(Device);
    int (*clientNewWithHandshake)(Device, Client*, const char* label);
    int (*clientFree)(Client);
    int (*getValue)(Client, const char* domain, const char* key, Value*);
    int (*startService)(Client, const char* name, Descriptor*);
    int (*descriptorFree)(Descriptor);
    int (*serviceNew)(Device, Descriptor, Service*);
    int (*serviceFree)(Service);
    int (*serviceSend)(Service, Value);
    int (*serviceReceive)(Service, Value*, unsigned milliseconds);
    int (*readPairRecord)(const char* identifier, char** data, std::uint32_t* size);
    void (*valueFromXml)(const char* text, std::uint32_t size, Value*);
    void (*valueToXml)(Value, char** text, std::uint32_t* size);
    void (*valueFree)(Value);

    // Where a device is looked up.
    static constexpr int lookUpUsb = 2;
    static constexpr int lookUpNetwork = 4;

    // Loads it for the rest of the process. False when it is missing or lacks a function.
    bool load();
    // Whether `load` would succeed, found out without keeping any of it in this process.
    static bool isThere();
};

} // namespace kivo
