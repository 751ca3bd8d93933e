#include "frmDownloadImage.h"

#include "AppError.h"
#include "AppGlobals.h"
#include "FieldLabel.h"
#include "ImageWriter.h"
#include "PlainFileName.h"
#include "clsMMSCommunication.h"
#include "clsPropertiesXML.h"

#include <QButtonGroup>
#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QRadioButton>
#include <QSpinBox>
#include <QVBoxLayout>

namespace {
QString text(const char* key, const char* fallback) {
    return AppGlobals::text(key, fallback);
}

QString preference(const char* key, const char* fallback) {
    return AppGlobals::setting("preferences", key, QString::fromLatin1(fallback));
}

const int kFormats[] = {ImageWriter::Jpeg, ImageWriter::Gif, ImageWriter::Png, ImageWriter::Bmp,
                        ImageWriter::Wbmp};
constexpr QSize kShownSize{176, 144};
const char* const kFormatNames[] = {"JPEG", "GIF", "PNG", "BMP", "WBMP"};
} // namespace

frmDownloadImage::frmDownloadImage(clsMMSCommunication& connection, QWidget* parent)
    : frmSendBase(connection, parent), lblPicture(new QLabel), lblConnect(new QLabel),
      fraFormat(new QGroupBox), m_formats(new QButtonGroup(this)), txtName(new QLineEdit),
      chkAdvanced(new QCheckBox), chkGifPalette(new QCheckBox), chkGifDiffusion(new QCheckBox),
      spnJpgQuality(new QSpinBox), cboWbmpRaster(new QComboBox), cmdSend(new QPushButton) {
    setObjectName(QStringLiteral("frmDownloadImage"));
    lblConnect->setObjectName(QStringLiteral("lblConnect"));
    lblPicture->setObjectName(QStringLiteral("lblPicture"));
    txtName->setObjectName(QStringLiteral("txtName"));
    chkAdvanced->setObjectName(QStringLiteral("chkAdvanced"));
    cmdSend->setObjectName(QStringLiteral("cmdSend"));
    lblName = FieldLabel::create(txtName, this);
    buildFormats();
    fraAdvanced = buildAdvanced();
    auto* name = new QHBoxLayout;
    name->addWidget(lblName);
    name->addWidget(txtName, 1);
    content()->addWidget(lblPicture, 0, Qt::AlignHCenter);
    content()->addWidget(lblConnect);
    content()->addWidget(fraFormat);
    content()->addLayout(name);
    content()->addWidget(chkAdvanced);
    content()->addWidget(fraAdvanced);
    addButton(cmdSend);
    cmdSend->setDefault(true);
    connect(cmdSend, &QPushButton::clicked, this, &frmDownloadImage::sendPicture);
    // The panel's state is the user's choice for next time, kept at once.
    connect(chkAdvanced, &QCheckBox::toggled, this, [this](bool shown) {
        fraAdvanced->setVisible(shown);
        if (clsPropertiesXML* settings = AppGlobals::settings())
            settings->SetProp("preferences", "ImageDownloadAdvancedShow", shown ? "1" : "0");
    });
    loadSettings();
    SetConnectState(connection.isConnected(), connection.deviceName());
    TranslateForm();
}

void frmDownloadImage::buildFormats() {
    fraFormat->setObjectName(QStringLiteral("fraFormat"));
    auto* row = new QHBoxLayout(fraFormat);
    for (int i = 0; i < int(std::size(kFormats)); ++i) {
        auto* button = new QRadioButton(QString::fromLatin1(kFormatNames[i]));
        m_formats->addButton(button, kFormats[i]);
        row->addWidget(button);
    }
}

QGroupBox* frmDownloadImage::buildAdvanced() {
    auto* panel = new QGroupBox;
    panel->setObjectName(QStringLiteral("fraAdvanced"));
    spnJpgQuality->setObjectName(QStringLiteral("spnJpgQuality"));
    spnJpgQuality->setRange(1, 100);
    cboWbmpRaster->setObjectName(QStringLiteral("cboWbmpRaster"));
    chkGifPalette->setObjectName(QStringLiteral("chkGifPalette"));
    chkGifDiffusion->setObjectName(QStringLiteral("chkGifDiffusion"));
    lblJpgQuality = FieldLabel::create(spnJpgQuality, panel);
    lblWbmpRaster = FieldLabel::create(cboWbmpRaster, panel);
    auto* form = new QFormLayout(panel);
    form->addRow(chkGifPalette);
    form->addRow(chkGifDiffusion);
    form->addRow(lblJpgQuality, spnJpgQuality);
    form->addRow(lblWbmpRaster, cboWbmpRaster);
    return panel;
}

void frmDownloadImage::loadSettings() {
    const int format = ImageWriter::formatIndex(preference("ImageFormat", "jpg"));
    QAbstractButton* chosen = m_formats->button(format);
    (chosen ? chosen : m_formats->button(ImageWriter::Jpeg))->setChecked(true);
    txtName->setText(preference("ImageDownloadName", "MyImage"));
    const ImageWriter::Settings encoder = ImageWriter::currentSettings();
    chkGifPalette->setChecked(encoder.gif.optimizedPalette);
    chkGifDiffusion->setChecked(encoder.gif.errorDiffusion);
    spnJpgQuality->setValue(encoder.jpgQuality);
    for (int raster = 1; raster <= 3; ++raster)
        cboWbmpRaster->addItem(QString(), raster);
    cboWbmpRaster->setCurrentIndex(cboWbmpRaster->findData(int(encoder.wbmpRaster)));
    const bool advanced = preference("ImageDownloadAdvancedShow", "0") == QLatin1String("1");
    chkAdvanced->setChecked(advanced);
    fraAdvanced->setVisible(advanced);
}

void frmDownloadImage::TranslateForm() {
    frmSendBase::TranslateForm();
    setWindowTitle(text("STR_SEND_PICTURE_TITLE", "Send the picture to the phone"));
    fraFormat->setTitle(text("STR_PICTURE_FORMAT", "Picture format"));
    FieldLabel::setCaption(lblName, text("STR_NAME", "&Name"));
    chkAdvanced->setText(text("STR_ADVANCED_OPTIONS", "&Advanced options"));
    fraAdvanced->setTitle(text("STR_ADVANCED_OPTIONS", "&Advanced options").remove(u'&'));
    chkGifPalette->setText(text("STR_SETTINGS_GIF_PALETTE", "GIF: build an &optimised palette"));
    chkGifDiffusion->setText(
        text("STR_SETTINGS_GIF_DIFFUSION", "GIF: &dither with error diffusion"));
    FieldLabel::setCaption(lblJpgQuality, text("STR_SETTINGS_JPG_QUALITY", "&JPEG quality"));
    FieldLabel::setCaption(lblWbmpRaster, text("STR_SETTINGS_WBMP_RASTER", "&WBMP raster"));
    const char* const rasters[][2] = {{"STR_WBMP_THRESHOLD", "Threshold (line art)"},
                                      {"STR_WBMP_ORDERED", "Ordered dither (even areas)"},
                                      {"STR_WBMP_DIFFUSION", "Error diffusion (photographs)"}};
    for (int i = 0; i < 3; ++i)
        cboWbmpRaster->setItemText(i, text(rasters[i][0], rasters[i][1]));
    cmdSend->setText(text("BTN_SEND", "&Send"));
    lblPicture->setAccessibleName(text("STR_SEND_PICTURE_SHOWN", "The picture to send"));
    SetConnectState(connection().isConnected(), connection().deviceName());
}

// The picture is shown as it is, or smaller when it is large.
void frmDownloadImage::SetDownloadPicture(const QImage& picture) {
    m_picture = picture;
    const QImage shown =
        picture.width() > kShownSize.width() || picture.height() > kShownSize.height()
            ? picture.scaled(kShownSize, Qt::KeepAspectRatio, Qt::SmoothTransformation)
            : picture;
    lblPicture->setPixmap(QPixmap::fromImage(shown));
}

void frmDownloadImage::SetConnectState(bool connected, const QString& device) {
    lblConnect->setText(
        connected ? AppGlobals::text("STR_PHONE_CONNECTED", "Phone connected: %0", {device})
                  : text("STR_NO_DEVICE_CONNECTED", "No phone is connected."));
}

void frmDownloadImage::sendPicture() {
    SetStatusTxt(text("STR_DOWNLOAD_IMG", "Preparing and sending the picture…"));
    setError(QString());
    progress()->setRange(0, 0);
    QString why;
    const QString file = convert(&why);
    if (file.isEmpty()) {
        progress()->setRange(0, 1);
        SetStatusTxt(text("STR_NO_MSG_DOWNLOAD", "Nothing has been sent."));
        setError(text("STR_ERROR_PICT_CONV", "The picture cannot be converted.") + u'\n' + why);
        return;
    }
    setHint(text("STR_DOWNLOAD_INFO", "If your phone asks, accept the incoming file."));
    cmdSend->setEnabled(false);
    setWorking(true);
    sendFile(file);
    setWorking(false);
    cmdSend->setEnabled(true);
    progress()->setRange(0, 1);
    progress()->reset();
}

// The picture under the user's name in a folder of the dialog's own; the
// name must be a plain file name, so it cannot lead out of that folder.
QString frmDownloadImage::convert(QString* why) {
    const int format = m_formats->checkedId();
    const QString name = txtName->text().trimmed() + ImageWriter::extension(format);
    *why = PlainFileName::refusal(name);
    const QString folder = m_converted.subFolder(QStringLiteral("send"));
    if (!why->isEmpty() || folder.isEmpty())
        return QString();
    ImageWriter::Settings encoder;
    encoder.jpgQuality = spnJpgQuality->value();
    encoder.gif.optimizedPalette = chkGifPalette->isChecked();
    encoder.gif.errorDiffusion = chkGifDiffusion->isChecked();
    encoder.wbmpRaster = static_cast<WbmpWriter::Raster>(cboWbmpRaster->currentData().toInt());
    try {
        ImageWriter::write(m_picture, format, folder + name, encoder);
    } catch (const AppError& error) {
        *why = error.description();
        return QString();
    }
    if (clsPropertiesXML* settings = AppGlobals::settings())
        settings->SetProp("preferences", "ImageDownloadName", txtName->text().trimmed());
    return folder + name;
}
