// SPDX-License-Identifier: MIT
#include "linux/base/GSettingsSwitch.h"

#include <dlfcn.h>

namespace kivo {
namespace {

constexpr const char* schema = "org.gnome.desktop.notifications.application";
constexpr const char* path = "/org/gnome/desktop/notifications/application/gnome-power-panel/";
constexpr const char* key = "enable";

} // namespace

// The entry points that are used. GLib's booleans are int.
struct GSettingsSwitch::Library {
    template <typename Function>
    Function load(const char* name) {
        void* const symbol = handle ? dlsym(handle, name) : nullptr;
        isComplete = isComplete && symbol;
        return reinterpret_cast<Function>(symbol);
    }

    void* handle = dlopen("libgio-2.0.so.0", RTLD_NOW | RTLD_LOCAL);
    bool isComplete = handle != nullptr;
    void* (*sourceGetDefault)() = load<void* (*)()>("g_settings_schema_source_get_default");
    void* (*sourceLookup)(void*, const char*,
                          int) = load<void* (*)(void*, const char*, int)>("g_settings_schema_source_lookup");
    int (*schemaHasKey)(void*, const char*) = load<int (*)(void*, const char*)>("g_settings_schema_has_key");
    void* (*newFull)(void*, void*,
                     const char*) = load<void* (*)(void*, void*, const char*)>("g_settings_new_full");
    int (*isWritable)(void*, const char*) = load<int (*)(void*, const char*)>("g_settings_is_writable");
    void* (*getUserValue)(void*,
                          const char*) = load<void* (*)(void*, const char*)>("g_settings_get_user_value");
    int (*getBoolean)(void*, const char*) = load<int (*)(void*, const char*)>("g_settings_get_boolean");
    int (*setBoolean)(void*, const char*,
                      int) = load<int (*)(void*, const char*, int)>("g_settings_set_boolean");
    void (*reset)(void*, const char*) = load<void (*)(void*, const char*)>("g_settings_reset");
    void (*sync)() = load<void (*)()>("g_settings_sync");
    int (*variantGetBoolean)(void*) = load<int (*)(void*)>("g_variant_get_boolean");
    void (*variantUnref)(void*) = load<void (*)(void*)>("g_variant_unref");
    void (*objectUnref)(void*) = load<void (*)(void*)>("g_object_unref");
    void (*schemaUnref)(void*) = load<void (*)(void*)>("g_settings_schema_unref");
};

struct GSettingsSwitch::Settings {
    Settings(Library& loaded, void* made) : library(loaded), object(made) {}
    ~Settings() { library.objectUnref(object); }
    Settings(const Settings&) = delete;
    Settings& operator=(const Settings&) = delete;

    Library& library;
    void* object;
};

GSettingsSwitch::GSettingsSwitch() = default;
GSettingsSwitch::~GSettingsSwitch() = default;

GSettingsSwitch::Settings* GSettingsSwitch::settings() {
    if (settings_)
        return settings_.get();
    if (!library_)
        library_ = std::make_unique<Library>();
    void* const source = library_->isComplete ? library_->sourceGetDefault() : nullptr;
    // Making settings without their schema would end the process.
    void* const found = source ? library_->sourceLookup(source, schema, 1) : nullptr;
    if (!found)
        return nullptr;
    if (library_->schemaHasKey(found, key))
        settings_ = std::make_unique<Settings>(*library_, library_->newFull(found, nullptr, path));
    library_->schemaUnref(found);
    if (settings_ && !library_->isWritable(settings_->object, key))
        settings_.reset();
    return settings_.get();
}

std::optional<PropertyValue> GSettingsSwitch::read() {
    auto* const present = settings();
    if (!present)
        return std::nullopt;
    void* const value = library_->getUserValue(present->object, key);
    if (!value)
        return PropertyValue(nullptr);
    const bool isOn = library_->variantGetBoolean(value) != 0;
    library_->variantUnref(value);
    return PropertyValue(isOn);
}

PropertyValue GSettingsSwitch::silenced(const PropertyValue& value) {
    // Not set, and off by the administrator's default.
    if (value.isNull() && settings() && !library_->getBoolean(settings()->object, key))
        return value;
    return false;
}

PropertyValue GSettingsSwitch::restored(const PropertyValue& now, const PropertyValue& before) {
    return now == PropertyValue(false) ? before : now;
}

std::optional<std::string> GSettingsSwitch::write(const PropertyValue& value) {
    auto* const present = settings();
    if (!present)
        return "GNOME's notification settings are not there";
    if (const auto isOn = value.boolean()) {
        if (!library_->setBoolean(present->object, key, *isOn ? 1 : 0))
            return "GNOME's notification settings refuse to be changed";
    } else {
        library_->reset(present->object, key);
    }
    library_->sync();
    return std::nullopt;
}

} // namespace kivo
