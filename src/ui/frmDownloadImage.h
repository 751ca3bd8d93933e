#pragma once

#include "PrivateTempDir.h"
#include "frmSendBase.h"

#include <QImage>

class QButtonGroup;
class QCheckBox;
class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QSpinBox;

// Sends one picture to the phone, converted to a phone picture format with
// the user's options (the settings' encoder options to start with), under
// the name the user gives it.
class frmDownloadImage : public frmSendBase {
    Q_OBJECT
public:
    frmDownloadImage(clsMMSCommunication& connection, QWidget* parent = nullptr);

    void SetDownloadPicture(const QImage& picture);
    void SetConnectState(bool connected, const QString& device);
    void TranslateForm() override;
    // The send button's work: convert, send, tell.
    void sendPicture();

private:
    void buildFormats();
    QGroupBox* buildAdvanced();
    void loadSettings();
    QString convert(QString* why);

    QImage m_picture;
    PrivateTempDir m_converted;
    QLabel* lblPicture;
    QLabel* lblConnect;
    QGroupBox* fraFormat;
    QButtonGroup* m_formats;
    QLineEdit* txtName;
    QLabel* lblName;
    QCheckBox* chkAdvanced;
    QGroupBox* fraAdvanced;
    QCheckBox* chkGifPalette;
    QCheckBox* chkGifDiffusion;
    QSpinBox* spnJpgQuality;
    QLabel* lblJpgQuality;
    QComboBox* cboWbmpRaster;
    QLabel* lblWbmpRaster;
    QPushButton* cmdSend;
};
