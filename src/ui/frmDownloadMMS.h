#pragma once

#include "PrivateTempDir.h"
#include "frmSendBase.h"

class clsMMSManager;
class clsMessage;

// Sends the message to the phone: packs it, as an installation package for
// a phone that installs them or as a template for any other, then sends that
// one file. It starts by itself once it is shown.
class frmDownloadMMS : public frmSendBase {
    Q_OBJECT
public:
    frmDownloadMMS(clsMMSCommunication& connection, QWidget* parent = nullptr);

    // The manager that packs, and the message; none sends nothing.
    void SetupDownloadData(clsMMSManager* manager, clsMessage* message);
    void TranslateForm() override;
    // The whole send: pack, choose, send, tell.
    void DownloadMMS();

protected:
    void showEvent(QShowEvent* event) override;

private:
    QString pack(bool package);
    void mMmsManager_ProsessingSlide(int slide, int count);

    clsMMSManager* m_manager = nullptr;
    clsMessage* m_message = nullptr;
    PrivateTempDir m_packed;
    bool m_started = false;
};
