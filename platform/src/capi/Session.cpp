// SPDX-License-Identifier: Apache-2.0
#include "capi/Call.h"

struct hmav_session {
    capi::Listener listener;
};

namespace capi {

Listener listenerOf(const hmav_session* session) {
    return session != nullptr ? session->listener : Listener();
}

}  // namespace capi

int hmav_session_new(const hmav_session_options* options, hmav_session** session,
                     hmav_error** error) noexcept {
    return capi::call({}, error, HMAV_INTERNAL, [&] {
        capi::clearResult(session, "session");
        const hmav_session_options wanted = capi::optionsOf(options);
        *session = new hmav_session{{wanted.on_report, wanted.user}};
    });
}

void hmav_session_free(hmav_session* session) noexcept {
    delete session;
}
