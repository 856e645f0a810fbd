#include "PageSettings.h"

#include <cstring>
#include <memory>

namespace {

struct FeatureListUnref {
    void operator()(WebKitFeatureList* list) const { webkit_feature_list_unref(list); }
};

void SwitchOff(WebKitSettings* settings, const char* identifier) {
    const std::unique_ptr<WebKitFeatureList, FeatureListUnref> features(
        webkit_settings_get_all_features());
    for (gsize i = 0; i < webkit_feature_list_get_length(features.get()); ++i) {
        WebKitFeature* const feature = webkit_feature_list_get(features.get(), i);
        if (std::strcmp(webkit_feature_get_identifier(feature), identifier) == 0) {
            webkit_settings_set_feature_enabled(settings, feature, FALSE);
        }
    }
}

}  // namespace

void RestrictPages(WebKitSettings* settings) {
    // In full screen a page could draw a desktop of its own, without the window's title.
    g_object_set(settings, "enable-plugins", FALSE, "enable-java", FALSE, "enable-fullscreen",
                 FALSE, "enable-page-cache", FALSE, nullptr);
    // A sign-in page needs no graphics processor, and a broken driver would leave it blank.
    webkit_settings_set_hardware_acceleration_policy(settings,
                                                     WEBKIT_HARDWARE_ACCELERATION_POLICY_NEVER);
    // A link could otherwise turn any answer into a download.
    SwitchOff(settings, "DownloadAttribute");
    // A worker would answer in the server's place.
    SwitchOff(settings, "ServiceWorkers");
}
