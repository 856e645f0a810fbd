#pragma once

#include <string>

// User-visible texts that the suite's graphical components share. Each constant is the untranslated
// English text. Catalogues use it as the key of the translation, and MsgCatalog::getMessage()
// returns the text in the user's language. Constant from static initialisation to the end of the
// process. Any thread.

// What this program shows.
extern const std::string kProductFullName;
extern const std::string kLoginWindowTitle;
extern const std::string kSignInRefused;
extern const std::string kCertificateDialogTitle;
extern const std::string kCertificateQuestion;
extern const std::string kCertificateIssuer;
extern const std::string kCertificateValidity;
extern const std::string kCertificateToken;
extern const std::string kPinDialogTitle;
extern const std::string kPinQuestion;
extern const std::string kPinWrong;
extern const std::string kPinFewTries;
extern const std::string kPinLastTry;

// Labels with a mnemonic, marked by "_".
extern const std::string kCancelMnemonic;
extern const std::string kUseCertificateMnemonic;
extern const std::string kContinueMnemonic;
extern const std::string kGetCertificateMnemonic;
extern const std::string kDisconnectMnemonic;
extern const std::string kConnectMnemonic;
extern const std::string kAcceptMnemonic;

// Captions in Pango markup.
extern const std::string kConnectionInformationCaption;

// Amounts, as pairs of singular and plural.
extern const std::string kDayAmount;
extern const std::string kDaysAmount;
extern const std::string kHourAmount;
extern const std::string kHoursAmount;
extern const std::string kMinuteAmount;
extern const std::string kMinutesAmount;

extern const std::string kBlank;

// Browser and certificate dialogs.
extern const std::string kBrowserTitle;
extern const std::string kUntrustedServerBlocked;
extern const std::string kContinueAnywayQuestion;
extern const std::string kKeepMeSafe;
extern const std::string kCertificateNameMismatch;
extern const std::string kCertificateRevoked;

// Connection panel.
extern const std::string kConnect;
extern const std::string kDisconnect;
extern const std::string kReconnect;
extern const std::string kPaused;
extern const std::string kVpnConnected;

// Statistics pages.
extern const std::string kConnectionInformation;
extern const std::string kTransportInformation;
extern const std::string kSecuredRoutesIpv4;
extern const std::string kTunnelModeIpv4;
extern const std::string kClientAddressIpv4;

// Network list.
extern const std::string kWired;
extern const std::string kMobileBroadbandNetwork;
extern const std::string kDynamicWep;
extern const std::string kWpa2PersonalAes;
extern const std::string k8021X;

// Lines of the event log.
extern const std::string kUserDeclinedBanner;
extern const std::string kUserCredentialsEntered;
extern const std::string kUserCredentialsPromptCancelled;

// Error sentences.
extern const std::string kRequestNotPermittedInAutoConnect;
extern const std::string kServiceUnavailable;
extern const std::string kScriptExtensionRequired;
