// SPDX-License-Identifier: MIT
#pragma once

#include "linux/base/AutostartEntry.h"
#include "linux/base/Folders.h"
#include "platform/LoginService.h"

#include <string>
#include <vector>

namespace kivo {

// Opening at login by an entry in the user's autostart folder. Only the file of Kivo's own name is ever
// touched, and what is in it stays as far as it can: an entry that its user changed is switched on or off in
// place, and one that can start nothing is moved aside. An entry that was installed for all users counts until
// the user has one; switching it off gives the user one that is switched off. Every question reads the files
// anew.
class AutostartLoginService final : public LoginService {
public:
    struct Places {
        std::string userFolder;                 // $XDG_CONFIG_HOME/autostart
        std::vector<std::string> systemFolders; // those of $XDG_CONFIG_DIRS, most important first
        std::string program;                    // the path of this program
        autostart::Session session;

        static Places find(const EnvironmentLookup& environment = environmentVariable);
    };
    explicit AutostartLoginService(Places places);

    bool isEnabled() override;
    std::optional<std::string> registerItem() override;
    std::optional<std::string> unregisterItem() override;

private:
    bool isStarted(const std::string& text) const;
    // The text of the entry for all users; empty when there is none.
    std::string systemEntry() const;

    Places places_;
    std::string path_;
};

} // namespace kivo
